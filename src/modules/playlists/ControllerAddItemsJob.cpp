#include "ControllerAddItemsJob.h"

#include <algorithm>

#include <QTimer>

#include "AddedItems.h"
#include "ControllerText.h"
#include "ModuleLog.h"
#include "PlayListBase.h"
#include "PlayListManager.h"

namespace {

// How long other clients wait at most for one part of the work on a great many items.
constexpr int SliceMs = 8;

} // namespace

Controller::AddItemsJob::AddItemsJob(Controller* controller, const ReqGroupProperties& props,
                                     const QList<OrvoPlayListItem>& items)
    : QObject(controller),
      m_controller(controller),
      m_props(props),
      m_check(items, controller->m_limits) {}

void Controller::AddItemsJob::checkSlice() {
    // A playlist that is moved as a whole must not change between being read and being deleted.
    const QDeadlineTimer deadline =
        m_props.wholePlaylist ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(SliceMs);
    if (!m_check.run(deadline)) {
        m_areMany = true;
        QTimer::singleShot(0, this, [this] { checkSlice(); });
    } else if (m_areMany) {
        // The transaction takes long enough without a slice in front of it, or the items' release
        // behind it: each has a turn of the event loop of its own.
        QTimer::singleShot(0, this, [this] { finish(); });
    } else {
        finish();
    }
}

void Controller::AddItemsJob::finish() {
    deleteLater();
    QString msg;
    // Again: others may have changed the playlist while the items were prepared and checked.
    const PlayListBase* target = m_controller->targetOf(m_props);
    if (target && !checkRevision(*m_props.request, target, m_props.prefix, msg)) {
        m_controller->setReply(*m_props.request, false, msg);
        return;
    }
    AddedItems added;
    if (isComplete())
        added = m_controller->addItemsFromAllReplays(m_props, m_check);
    const int count = std::max(0, added.count);
    LOG4CPLUS_DEBUG(moduleLog(),
                    "numItemsAdded: " << count << " addItemsResMsg: " << loggedText(added.text));

    // Adding a whole playlist moves it: the source goes, unless it is the target itself.
    if (count > 0 && m_props.wholePlaylist && m_props.fromPlid != m_props.plid)
        m_controller->m_manager->deletePlayList(m_props.fromPlid);

    bool success = false;
    if (count == 0) {
        msg = buildErrMsg(m_props.prefix, CONTROLLER_TEXT("No items were added."), added.text);
    } else {
        success = succeed(added, msg);
        if (!added.text.isEmpty())
            msg += QLatin1Char(' ') + added.text;
    }
    m_controller->setReply(*m_props.request, success, msg);
    LOG4CPLUS_DEBUG(moduleLog(), "Add items finished, num added: " << count);
}

// A playlist is moved with all that it has or stays: an entry that could not be read, and would be
// left out, would be deleted with the source. Single items may be left out.
bool Controller::AddItemsJob::isComplete() const {
    if (!m_props.wholePlaylist)
        return true;
    const QList<OrvoPlayListItem>& items = m_check.items();
    const bool complete = items.size() == m_props.requested &&
                          std::none_of(items.cbegin(), items.cend(),
                                       [](const OrvoPlayListItem& item) { return item.isEmpty(); });
    if (!complete)
        LOG4CPLUS_ERROR(moduleLog(),
                        "Cannot read all items of playlist with plid: " << m_props.fromPlid);
    return complete;
}

// What comes after the items were added. False, with the reason in `msg`, when they are in the
// playlist and the first of them cannot be played.
bool Controller::AddItemsJob::succeed(const AddedItems& added, QString& msg) {
    PlayListBase* pl = m_controller->targetOf(m_props);
    if (!checkPlayList(pl, m_props.plid, m_props.prefix, msg))
        return false;
    LOG4CPLUS_DEBUG(moduleLog(), "plsize: " << pl->getSize());
    if (pl->getSize() > 0 && m_props.mode == OrvoPlayListAddPosition::Now) {
        LOG4CPLUS_DEBUG(moduleLog(), "addMode: now lastSeqNum: " << pl->getLastSequenceNumber()
                                                                 << " nextSeqNum: " << added.first);
        const QString failure = CONTROLLER_TEXT("Cannot get last sequence number.");
        if (!m_controller->startFirstNewItem(pl, added.first, failure, m_props.prefix, msg))
            return false;
    }
    msg = buildOkMsg(QString::number(added.count),
                     CONTROLLER_TEXT("Items added successfully to playlist."), pl->getName());
    return true;
}
