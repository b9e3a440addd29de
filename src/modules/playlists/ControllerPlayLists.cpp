#include "Controller.h"
#include "ControllerText.h"
#include "LoneSurrogates.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListRecord.h"
#include "TextBudget.h"

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
    const QString name =
        replaceLoneSurrogates(OrvoPlayListPlCreate(request.value().toHash()).name());
    const QString prefix = CONTROLLER_TEXT("Could not create playlist.");
    if (!checkNonemptyString(name, OrvoPlayListPlCreate::Name(), prefix, msg))
        return refuse(QStringLiteral("Cannot create playlist with empty name"));
    if (!checkNameLength(name, prefix, msg))
        return refuse(QStringLiteral("Cannot create playlist with a name of %1 bytes")
                          .arg(TextBudget::bytesOf(name)));
    const PlayListBase* pl = m_manager->createPlayList(name);
    if (!pl)
        return refuse(msg, QStringLiteral("Create playlist failed"), prefix,
                      CONTROLLER_TEXT("Create playlist error."));
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
    const QString name = replaceLoneSurrogates(args.name());
    const QString prefix = CONTROLLER_TEXT("Could not set playlist name.");
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot rename playlist id: %1").arg(plid));
    if (plid == PlayListRecord::PlayQueueUid)
        return refuse(msg, QStringLiteral("Cannot rename playqueue"), prefix,
                      CONTROLLER_TEXT("Cannot rename PlayQueue."));
    if (!checkNonemptyString(name, OrvoPlayListPlSetName::Name(), prefix, msg))
        return refuse(QStringLiteral("Cannot rename playlist id:%1 to empty string").arg(plid));
    if (!checkNameLength(name, prefix, msg))
        return refuse(QStringLiteral("Cannot rename playlist id:%1 to a name of %2 bytes")
                          .arg(plid)
                          .arg(TextBudget::bytesOf(name)));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkStored(pl->setName(name), plid, prefix, msg))
        return false;
    LOG4CPLUS_INFO(moduleLog(),
                   "Playlist id:" << plid << " successfully renamed to: " << loggedText(name));
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist renamed successfully."), pl->getName());
    return true;
}

// A command that sets a mode, of which the playlist keeps only whether it is `on`. Greater modes
// than `last` are refused; negative ones are taken, and are off like all others. The texts are
// translated by the handler, whose signature is their context.
struct Controller::ModeCommand {
    const char* name;
    const char* stored; // what the log calls it once it is set
    QString prefix;
    QString invalid;
    QString done;
    int last;
    int on;
    bool (PlayListBase::*set)(bool);
};

bool Controller::plSetShuffle(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    using Args = OrvoPlayListPlSetShuffle;
    using Modes = OrvoPlayListPlShuffleMode;
    const Args args(withNamedMode<Modes>(request.value(), Args::Mode()).toHash());
    const ModeCommand command = {"shuffle",
                                 "shuffle",
                                 CONTROLLER_TEXT("Could not set shuffle mode on playlist."),
                                 CONTROLLER_TEXT("Invalid shuffle mode."),
                                 CONTROLLER_TEXT("Playlist shuffle mode changed successfully."),
                                 Modes::On,
                                 Modes::On,
                                 &PlayListBase::setShuffle};
    return setMode(command, args.plid(), args.mode(), msg);
}

bool Controller::plSetRepeat(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    using Args = OrvoPlayListPlSetRepeat;
    using Modes = OrvoPlayListPlRepeatMode;
    const Args args(withNamedMode<Modes>(request.value(), Args::Mode()).toHash());
    const ModeCommand command = {"repeat",
                                 "repeat all",
                                 CONTROLLER_TEXT("Could not set repeat mode on playlist."),
                                 CONTROLLER_TEXT("Invalid repeat mode."),
                                 CONTROLLER_TEXT("Playlist repeat mode changed successfully."),
                                 Modes::Track,
                                 Modes::All,
                                 &PlayListBase::setRepeatAll};
    return setMode(command, args.plid(), args.mode(), msg);
}

bool Controller::setMode(const ModeCommand& command, int plid, int mode, QString& msg) {
    const QString name = QString::fromLatin1(command.name);
    const QString& prefix = command.prefix;
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(
            QStringLiteral("Cannot set %1 for invalid playlist id: %2").arg(name).arg(plid));
    if (mode > command.last)
        return refuse(msg, QStringLiteral("Cannot set %1 mode: %2").arg(name).arg(mode), prefix,
                      command.invalid, name + QStringLiteral("-mode"));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl || !checkStored((pl->*command.set)(mode == command.on), plid, prefix, msg))
        return false;
    LOG4CPLUS_INFO(moduleLog(),
                   "Playlist id:" << plid << " set " << command.stored << ": " << mode);
    msg = buildOkMsg(command.done, pl->getName());
    return true;
}

bool Controller::plDelete(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not delete playlist.");
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot delete invalid playlist id: %1").arg(plid));
    if (plid == PlayListRecord::PlayQueueUid)
        return refuse(msg, QStringLiteral("Cannot delete playqueue"), prefix,
                      CONTROLLER_TEXT("Cannot delete PlayQueue."));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    const QString name = pl->getName();
    if (!m_manager->deletePlayList(pl))
        return refuse(msg, QStringLiteral("Delete playlist id: %1 failed").arg(plid), prefix,
                      CONTROLLER_TEXT("Delete playlist error."));
    Q_EMIT playlistDeleted(plid);
    LOG4CPLUS_INFO(moduleLog(), "Playlist id: " << plid << " deleted successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Playlist deleted successfully."), name);
    return true;
}

bool Controller::plClearItems(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not clear playlist.");
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot clear items from invalid playlist id: %1").arg(plid));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    if (!pl->clearItems())
        return refuse(msg, QStringLiteral("Clear playlist id: %1 failed").arg(plid), prefix,
                      CONTROLLER_TEXT("Clear playlist failed."));
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
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot delete items from invalid playlist id: %1").arg(plid));
    if (items.isEmpty())
        return refuse(msg,
                      QStringLiteral("Cannot delete zero items from playlist id: %1").arg(plid),
                      prefix, CONTROLLER_TEXT("Please select one or more items to remove."));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    const int numItemsChanged = pl->removeItems(items);
    LOG4CPLUS_TRACE(moduleLog(), "numItemsChanged " << numItemsChanged);
    if (numItemsChanged <= 0)
        return refuse(msg, QStringLiteral("Remove items from playlist id: %1 failed").arg(plid),
                      prefix, CONTROLLER_TEXT("Remove items failed"));
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
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot move items in invalid playlist id: %1").arg(plid));
    if (items.isEmpty())
        return refuse(
            msg,
            QStringLiteral("Please select one or more items to move in playlist id: %1").arg(plid),
            prefix, CONTROLLER_TEXT("Please select one or more items to move."));
    if (to < 0)
        return refuse(
            msg,
            QStringLiteral("Cannot move items to negative position in playlist id: %1").arg(plid),
            prefix, CONTROLLER_TEXT("Cannot move items to negative position."));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    if (to >= pl->getSize())
        return refuse(
            msg, QStringLiteral("Cannot move items, sequence number is not in valid range"), prefix,
            CONTROLLER_TEXT("Cannot move items, sequence number is not in valid range."));
    const auto positions = [&items] {
        const auto text = [&items](int i) { return QStringLiteral("%1,").arg(items.at(i)); };
        return loggedList(items.size(), text, QString());
    };
    LOG4CPLUS_TRACE(moduleLog(), "indicies: " << positions() << " toSeqNum " << to);
    if (!pl->moveItems(items, to))
        return refuse(msg,
                      QStringLiteral("Unable to move items (%1) to seqnum %2 in playlist id: %3")
                          .arg(positions())
                          .arg(to)
                          .arg(plid),
                      prefix, CONTROLLER_TEXT("Move items failed"));
    LOG4CPLUS_INFO(moduleLog(),
                   "Items in playlist id: " << plid << " moved successfully to position: " << to);
    // The sentence of the remove command, which clients of both show as it is.
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
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot set order of invalid playlist id: %1").arg(plid));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    if (!checkRevision(request, pl, prefix, msg))
        return false;
    const bool isList = args.attribute(OrvoPlayListPlSetOrder::Order()).type() == QVariant::List;
    if (!isList || !pl->isOrder(order))
        return refuse(
            msg, QStringLiteral("Order of playlist id: %1 must name every position once").arg(plid),
            prefix, CONTROLLER_TEXT("Please name every position once."),
            OrvoPlayListPlSetOrder::Order());
    if (!pl->setOrder(order))
        return refuse(msg, QStringLiteral("Set order of playlist id: %1 failed").arg(plid), prefix,
                      CONTROLLER_TEXT("Set order failed"));
    LOG4CPLUS_INFO(moduleLog(), "Order of playlist id: " << plid << " set successfully");
    msg = buildOkMsg(CONTROLLER_TEXT("Order of playlist set successfully."), pl->getName());
    return true;
}

bool Controller::plPlay(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const int plid = OrvoPlayListPlId(request.value().toHash()).plid();
    const QString prefix = CONTROLLER_TEXT("Could not start playback on playlist.");
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot play invalid playlist id: %1").arg(plid));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
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
