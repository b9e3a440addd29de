#include "Controller.h"
#include "ControllerText.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListRecord.h"
#include "TextBudget.h"
#include "WholeText.h"

namespace {

// A mode may come as a number or by its name; the record reads names, so a number is turned into
// its name first. What does not fit into 32 bits, a fraction and a truth value stay as they are and
// are refused: QVariant would make some mode of them.
template <typename Modes>
OrvoHash withNamedMode(const QVariant& value, const QString& key) {
    OrvoHash hash(value.toHash());
    const QVariant mode = hash.attribute(key);
    bool isNumber = false;
    const int number = mode.toInt(&isNumber);
    if (isNumber && mode.userType() != QMetaType::Bool && mode.toDouble() == number)
        hash.setAttribute(key, Modes::toString(number));
    return hash;
}

} // namespace

bool Controller::plCreate(CMSetDataRequest request, QString& msg, int& id) {
    CM_ENTER(moduleLog());
    const QString name = wholeText(OrvoPlayListPlCreate(request.value().toHash()).name());
    const QString prefix = CONTROLLER_TEXT("Could not create playlist.");
    if (!checkNonemptyString(name, OrvoPlayListPlCreate::Name(), prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot create playlist with empty name");
        return false;
    }
    if (!checkNameLength(name, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot create playlist with a name of "
                                         << TextBudget::bytesOf(name) << " bytes");
        return false;
    }
    const PlayListBase* pl = m_manager->createPlayList(name);
    if (!pl) {
        LOG4CPLUS_ERROR(moduleLog(), "Create playlist failed");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Create playlist error."));
        return false;
    }
    id = pl->getUid();
    Q_EMIT playlistCreated(id);
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << id << ", name: " << loggedText(pl->getName())
                                                << " created successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist created successfully."), pl->getName());
    return true;
}

bool Controller::plSetName(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlSetName args(request.value().toHash());
    const int plid = args.plid();
    const QString name = wholeText(args.name());
    const QString prefix = CONTROLLER_TEXT("Could not set playlist name.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot rename playlist id: " << plid);
        return false;
    }
    if (plid == PlayListRecord::PlayQueueUid) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot rename playqueue");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Cannot rename PlayQueue."));
        return false;
    }
    if (!checkNonemptyString(name, OrvoPlayListPlSetName::Name(), prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot rename playlist id:" << plid << " to empty string");
        return false;
    }
    if (!checkNameLength(name, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot rename playlist id:" << plid << " to a name of "
                                                                  << TextBudget::bytesOf(name)
                                                                  << " bytes");
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkStored(pl->setName(name), plid, prefix, msg))
        return false;
    LOG4CPLUS_INFO(moduleLog(),
                   "Playlist id:" << plid << " successfully renamed to: " << loggedText(name));
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist renamed successfully."), pl->getName());
    return true;
}

bool Controller::plSetShuffle(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlSetShuffle args(
        withNamedMode<OrvoPlayListPlShuffleMode>(request.value(), OrvoPlayListPlSetShuffle::Mode())
            .toHash());
    const int plid = args.plid();
    const OrvoPlayListPlShuffleMode::Enum mode = args.mode();
    const QString prefix = CONTROLLER_TEXT("Could not set shuffle mode on playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot set shuffle for invalid playlist id: " << plid);
        return false;
    }
    // Deliberate: no lower bound, a negative mode switches off.
    if (mode > OrvoPlayListPlShuffleMode::On) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot set shuffle mode: " << int(mode));
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Invalid shuffle mode."),
                          QStringLiteral("shuffle-mode"));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkStored(pl->setShuffle(mode == OrvoPlayListPlShuffleMode::On), plid, prefix, msg))
        return false;
    LOG4CPLUS_INFO(moduleLog(), "Playlist id:" << plid << " set shuffle: " << int(mode));
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist shuffle mode changed successfully."), pl->getName());
    return true;
}

bool Controller::plSetRepeat(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlSetRepeat args(
        withNamedMode<OrvoPlayListPlRepeatMode>(request.value(), OrvoPlayListPlSetRepeat::Mode())
            .toHash());
    const int plid = args.plid();
    const OrvoPlayListPlRepeatMode::Enum mode = args.mode();
    const QString prefix = CONTROLLER_TEXT("Could not set repeat mode on playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot set repeat for invalid playlist id: " << plid);
        return false;
    }
    // Deliberate: no lower bound, and every accepted mode but repeat-all is kept as "off".
    if (mode > OrvoPlayListPlRepeatMode::Track) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot set repeat mode: " << int(mode));
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Invalid repeat mode."),
                          QStringLiteral("repeat-mode"));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkStored(pl->setRepeatAll(mode == OrvoPlayListPlRepeatMode::All), plid, prefix, msg))
        return false;
    LOG4CPLUS_INFO(moduleLog(), "Playlist id:" << plid << " set repeat all: " << int(mode));
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist repeat mode changed successfully."), pl->getName());
    return true;
}

bool Controller::plDelete(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not delete playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot delete invalid playlist id: " << plid);
        return false;
    }
    if (plid == PlayListRecord::PlayQueueUid) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot delete playqueue");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Cannot delete PlayQueue."));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    const QString name = pl->getName();
    if (!m_manager->deletePlayList(pl)) {
        LOG4CPLUS_ERROR(moduleLog(), "Delete playlist id: " << plid << " failed");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Delete playlist error."));
        return false;
    }
    Q_EMIT playlistDeleted(plid);
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " deleted successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist deleted successfully."), name);
    return true;
}

bool Controller::plClearItems(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not clear playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot clear items from invalid playlist id: " << plid);
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    if (!pl->clearItems()) {
        LOG4CPLUS_ERROR(moduleLog(), "Clear playlist id: " << plid << " failed");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Clear playlist failed."));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " cleared successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist cleared successfully."), pl->getName());
    return true;
}

bool Controller::plRemoveItems(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlRemoveItems args(request.value().toHash());
    const int plid = args.plid();
    const QList<int> items = args.items();
    const QString prefix = CONTROLLER_TEXT("Could not remove items from playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot delete items from invalid playlist id: " << plid);
        return false;
    }
    if (items.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot delete zero items from playlist id: " << plid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Please select one or more items to remove."));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    const int numItemsChanged = pl->removeItems(items);
    LOG4CPLUS_TRACE(moduleLog(), "numItemsChanged " << numItemsChanged);
    if (numItemsChanged <= 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Remove items from playlist id: " << plid << " failed");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Remove items failed"));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(),
                   "Removed " << numItemsChanged << " items from playlist id: " << plid);
    msg = buildOkMsg(QString::number(numItemsChanged),
                     CONTROLLER_TEXT("Items removed successfully from playlist."), pl->getName());
    return true;
}

bool Controller::plMoveItems(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlMoveItems args(request.value().toHash());
    const int plid = args.plid();
    const int to = args.to();
    const QList<int> items = args.items();
    const QString prefix = CONTROLLER_TEXT("Could not move items in playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot move items in invalid playlist id: " << plid);
        return false;
    }
    if (items.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Please select one or more items to move in playlist id: " << plid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Please select one or more items to move."));
        return false;
    }
    if (to < 0) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Cannot move items to negative position in playlist id: " << plid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Cannot move items to negative position."));
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    if (to >= pl->getSize()) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot move items, sequence number is not in valid range");
        msg = buildErrMsg(
            prefix, CONTROLLER_TEXT("Cannot move items, sequence number is not in valid range."));
        return false;
    }
    const auto positions = [&items] {
        const auto text = [&items](int i) { return QStringLiteral("%1,").arg(items.at(i)); };
        return loggedList(items.size(), text, QString());
    };
    LOG4CPLUS_TRACE(moduleLog(), "indicies: " << positions() << " toSeqNum " << to);
    if (!pl->moveItems(items, to)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to move items (" << positions() << ") to seqnum " << to
                                                              << " in playlist id: " << plid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Move items failed"));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(),
                   "Items in playlist id: " << plid << " moved successfully to position: " << to);
    // Deliberate: the sentence of the remove command.
    msg = buildOkMsg(QString::number(items.count()),
                     CONTROLLER_TEXT("Items removed successfully from playlist."), pl->getName());
    return true;
}

bool Controller::plSetOrder(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlSetOrder args(request.value().toHash());
    const int plid = args.plid();
    const QList<int> order = args.order();
    const QString prefix = CONTROLLER_TEXT("Could not set order of playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot set order of invalid playlist id: " << plid);
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    if (!args.containsOrder() || !pl->isOrder(order)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Order of playlist id: " << plid << " must name every position once");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Please name every position once."),
                          OrvoPlayListPlSetOrder::Order());
        return false;
    }
    if (!pl->setOrder(order)) {
        LOG4CPLUS_ERROR(moduleLog(), "Set order of playlist id: " << plid << " failed");
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Set order failed"));
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(), "Order of playlist id: " << plid << " set successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Order of playlist set successfully."), pl->getName());
    return true;
}

bool Controller::plPlay(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not start playback on playlist.");
    if (!checkPlayListId(plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot play invalid playlist id: " << plid);
        return false;
    }
    PlayListBase* pl = m_manager->getPlayListByUid(plid);
    if (!checkPlayList(pl, plid, prefix, msg)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " doesn't exist");
        return false;
    }
    if (pl->getSize() == 0) {
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("There are no items in the playlist."));
        return false;
    }
    const QList<OrvoPlayListItem> first = pl->getItems(0, 0);
    if (first.isEmpty()) {
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Cannot get first item"));
        return false;
    }
    tryStartItem(first.first(), pl, 0);
    msg = buildOkMsg(CONTROLLER_TEXT("Playback started successfully on playlist."), pl->getName());
    return true;
}
