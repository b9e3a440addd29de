#include "CollectionBase.h"
#include "Controller.h"
#include "ControllerText.h"
#include "LoneSurrogates.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "TextBudget.h"

bool Controller::clCreate(CMSetDataRequest request, QString& msg, int& id) {
    CM_ENTER(moduleLog());
    const QString name =
        replaceLoneSurrogates(OrvoPlayListClCreate(request.value().toHash()).name());
    const QString prefix = CONTROLLER_TEXT("Could not create collection.");
    if (!checkNonemptyString(name, OrvoPlayListClCreate::Name(), prefix, msg))
        return refuse(QStringLiteral("Cannot create collection with empty name"));
    if (!checkNameLength(name, prefix, msg))
        return refuse(QStringLiteral("Cannot create collection with a name of %1 bytes")
                          .arg(TextBudget::bytesOf(name)));
    const CollectionBase* cl = m_manager->createCollection(name);
    if (!cl)
        return refuse(msg, QStringLiteral("Create collection error"), prefix,
                      CONTROLLER_TEXT("Create collection error."));
    id = cl->getUid();
    LOG4CPLUS_INFO(moduleLog(), "Collection id: " << id << ", name: " << loggedText(cl->getName())
                                                  << " created successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Collection created successfully."), cl->getName());
    return true;
}

bool Controller::clDelete(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int clid = OrvoPlayListClId(request.value().toHash()).clid();
    const QString prefix = CONTROLLER_TEXT("Could not delete collection.");
    CollectionBase* cl = m_manager->getCollectionByUid(clid);
    if (!cl)
        return refuse(msg, QStringLiteral("Unable to find collection id: %1").arg(clid), prefix,
                      CONTROLLER_TEXT("There is no collection with this ID."),
                      QString::number(clid));
    const QString name = cl->getName();
    if (!m_manager->deleteCollection(cl))
        return refuse(msg, QStringLiteral("Unable to delete collection id: %1").arg(clid), prefix,
                      CONTROLLER_TEXT("Delete collection failed"));
    LOG4CPLUS_INFO(moduleLog(), "Collection id: " << clid << " deleted successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Collection deleted successfully."), name);
    return true;
}

CollectionBase* Controller::existingCollection(int clid, const QString& prefix,
                                               const QString& reason, QString& msg) {
    CollectionBase* cl = m_manager->getCollectionByUid(clid);
    if (!cl)
        refuse(msg, QStringLiteral("Collection id: %1doesn't exist").arg(clid), prefix, reason,
               QString::number(clid));
    return cl;
}

bool Controller::clAddItem(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListClAddRemoveItem args(request.value().toHash());
    const int plid = args.plid();
    const int clid = args.clid();
    const QString prefix = CONTROLLER_TEXT("Could not add items to collection.");
    if (!checkPlayListId(plid, prefix, msg))
        return false;
    CollectionBase* cl = existingCollection(
        clid, prefix, CONTROLLER_TEXT("There is no collection with this ID."), msg);
    if (!cl)
        return false;
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg))
        return refuse(
            QStringLiteral("Unable to add playList to collection, playlist id: %1 doesn't exist")
                .arg(plid));
    if (!cl->addPlayList(pl))
        return refuse(msg,
                      QStringLiteral("Unable to add playList id: %1 to collection id: %2")
                          .arg(plid)
                          .arg(clid),
                      prefix, CONTROLLER_TEXT("Add playlist to collection failed."));
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " added to collection id: " << clid);
    msg = buildOkMsg(CONTROLLER_TEXT("Items added successfully to collection."), cl->getName());
    return true;
}

bool Controller::clRemoveItem(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListClAddRemoveItem args(request.value().toHash());
    const int plid = args.plid();
    const int clid = args.clid();
    const QString prefix = CONTROLLER_TEXT("Could not remove items from collection.");
    if (!checkPlayListId(plid, prefix, msg))
        return false;
    CollectionBase* cl = existingCollection(
        clid, prefix, CONTROLLER_TEXT("There is no collection with this ID."), msg);
    if (!cl)
        return false;
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg))
        return refuse(
            QStringLiteral(
                "Unable to remove playList from collection, playlist id: %1 doesn't exist")
                .arg(plid));
    if (!cl->removePlayList(pl))
        return refuse(msg,
                      QStringLiteral("Unable to remove playList, id: %1 from collection id: %2")
                          .arg(plid)
                          .arg(clid),
                      prefix, CONTROLLER_TEXT("Remove playlist from collection failed."));
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " removed from collection id: " << clid);
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist removed successfully from collection."),
                     cl->getName());
    return true;
}
