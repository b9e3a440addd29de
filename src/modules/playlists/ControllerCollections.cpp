#include "CollectionBase.h"
#include "Controller.h"
#include "ControllerText.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "TextBudget.h"
#include "WholeText.h"

bool Controller::clCreate(CMSetDataRequest request, QString& msg, int& id) {
    CM_ENTER(moduleLog());
    const QString name = wholeText(OrvoPlayListClCreate(request.value().toHash()).name());
    const QString prefix = CONTROLLER_TEXT("Could not create collection.");
    if (!checkNonemptyString(name, OrvoPlayListClCreate::Name(), prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot create collection with empty name");
        return false;
    }
    if (!checkNameLength(name, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot create collection with a name of "
                                         << TextBudget::bytesOf(name) << " bytes");
        return false;
    }
    const CollectionBase* cl = m_manager->createCollection(name);
    if (!cl) {
        LOG4CPLUS_ERROR(moduleLog(), "Create collection error");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Create collection error."));
        return false;
    }
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
    if (!cl) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to find collection id: " << clid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("There is no collection with this ID."),
                          QString::number(clid));
        return false;
    }
    const QString name = cl->getName();
    if (!m_manager->deleteCollection(cl)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to delete collection id: " << clid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Delete collection failed"));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(), "Collection id: " << clid << " deleted successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Collection deleted successfully."), name);
    return true;
}

bool Controller::clAddItem(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListClAddRemoveItem args(request.value().toHash());
    const int plid = args.plid();
    const int clid = args.clid();
    const QString prefix = CONTROLLER_TEXT("Could not add items to collection.");
    if (!checkPlayListId(plid, prefix, msg))
        return false;
    CollectionBase* cl = m_manager->getCollectionByUid(clid);
    if (!cl) {
        LOG4CPLUS_ERROR(moduleLog(), "Collection id: " << clid << "doesn't exist");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("There is no collection with this ID."),
                          QString::number(clid));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to add playList to collection, playlist id: "
                                         << plid << " doesn't exist");
        return false;
    }
    if (!cl->addPlayList(pl)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Unable to add playList id: " << plid << " to collection id: " << clid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Add playlist to collection failed."));
        return false;
    }
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
    CollectionBase* cl = m_manager->getCollectionByUid(clid);
    if (!cl) {
        LOG4CPLUS_ERROR(moduleLog(), "Collection id: " << clid << "doesn't exist");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("There is no collection with this ID."),
                          QString::number(clid));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove playList from collection, playlist id: "
                                         << plid << " doesn't exist");
        return false;
    }
    if (!cl->removePlayList(pl)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove playList, id: "
                                         << plid << " from collection id: " << clid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Remove playlist from collection failed."));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " removed from collection id: " << clid);
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist removed successfully from collection."),
                     cl->getName());
    return true;
}
