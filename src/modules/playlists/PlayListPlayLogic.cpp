#include "PlayListPlayLogic.h"

#include "CMConnect.h"
#include "ModuleLog.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListWorker.h"
#include "PlayLogicLog.h"

log4cplus::Logger& playLogicLog() {
    static log4cplus::Logger logger =
        log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayListsPlayLogic"));
    return logger;
}

PlayListPlayLogic::PlayListPlayLogic(PlayListWorker* worker, PlayListManager* manager,
                                     QObject* parent)
    : StreamerPlayLogic(worker->nodes(), OrvoPlayListsPlayLogicPath(), parent),
      m_worker(worker),
      m_manager(manager) {
    cmConnect(m_manager, &PlayListManager::playlistDeleted, this,
              &PlayListPlayLogic::on_playlist_deleted);
}

// --- the current playlist and its tracks ---

template <typename Wire>
void PlayListPlayLogic::wireCurrentPlayList(Wire wire) {
    using List = PlayListBase;
    using Logic = PlayListPlayLogic;
    wire(&List::itemsCleared, &Logic::on_currentPlayList_cleared);
    wire(&List::itemMoved, &Logic::on_currentPlayList_itemMoved);
    wire(&List::itemsMoved, &Logic::on_currentPlayList_itemsMoved);
    wire(&List::itemsReordered, &Logic::on_currentPlayList_itemsReordered);
    wire(&List::itemsAdded, &Logic::on_currentPlayList_itemsAdded);
    wire(&List::itemsInserted, &Logic::on_currentPlayList_itemsInserted);
    wire(&List::itemsRemoved, &Logic::on_currentPlayList_itemsRemoved);
    wire(&List::shuffleChanged, &Logic::on_currentPlayList_shuffleChanged);
    wire(&List::repeatAllChanged, &Logic::on_currentPlayList_repeatAllChanged);
}

void PlayListPlayLogic::setCurrentPlayList(PlayListBase* pl) {
    const auto connect = [this](auto signal, auto slot) {
        cmConnect(m_currentPlayList, signal, this, slot);
    };
    const auto disconnect = [this](auto signal, auto slot) {
        cmDisconnect(m_currentPlayList, signal, this, slot);
    };
    if (m_currentPlayList)
        wireCurrentPlayList(disconnect);
    m_currentPlayList = pl;
    if (m_currentPlayList)
        wireCurrentPlayList(connect);
    Q_EMIT upNextChanged();
}

void PlayListPlayLogic::setRepeatMode(RepeatMode mode) {
    m_repeatMode = mode;
    if (m_currentPlayList)
        m_currentPlayList->setRepeatAll(mode == RepeatAll);
    Q_EMIT upNextChanged();
}

OrvoRoles PlayListPlayLogic::trackAt(int seqNum, const char* whenThereIsNone) {
    if (!m_currentPlayList)
        return {};
    const QList<OrvoPlayListItem> items = m_currentPlayList->getItems(seqNum, seqNum);
    if (items.isEmpty()) {
        LOG4CPLUS_DEBUG(playLogicLog(), whenThereIsNone);
        return {};
    }
    return m_currentPlayList->itemToOrvoRoles(items.first());
}

OrvoRoles PlayListPlayLogic::getTrackRelative(int offset) {
    if (!m_currentPlayList)
        return {};
    return trackAt(m_currentPlayList->getLastSequenceNumber() + offset,
                   "Reached last item of playlist");
}

OrvoRoles PlayListPlayLogic::getTrackAbsolute(int seqNum) {
    return trackAt(seqNum, "There is no item with this sequence number in the playlist");
}

OrvoRoles PlayListPlayLogic::getCurrentTrack() {
    return getTrackRelative(0);
}

OrvoRoles PlayListPlayLogic::getNextTrack() {
    if (data().streamerError().containsCode()) {
        ++m_errorCount;
        if (m_errorCount > MaxErrorCount) {
            LOG4CPLUS_ERROR(playLogicLog(), "Reached maximum error count exiting");
            return {};
        }
    } else {
        m_errorCount = 0;
    }

    m_shuffleOrder.returnToPlaying();
    OrvoRoles result = m_shuffleEnabled ? shuffledTrack(&PlayListPlayLogic::getNextShuffleItem)
                                        : getTrackRelative(1);
    if (result.isEmpty() && m_currentPlayList && m_repeatMode == RepeatAll) {
        const int first = m_shuffleEnabled ? m_shuffleOrder.entries().value(0, 0) : 0;
        result = getTrackAbsolute(first);
        if (result.isEmpty())
            LOG4CPLUS_WARN(
                playLogicLog(),
                "Playlist should start from beginning again, but does not contain any tracks");
    }
    return result;
}

// A track that is there and could not be read keeps its turn: the cursor stays.
OrvoRoles PlayListPlayLogic::shuffledTrack(int (PlayListPlayLogic::*step)()) {
    const ShuffleOrder before = m_shuffleOrder;
    const int seqNum = (this->*step)();
    OrvoRoles track;
    if (seqNum != ShuffleOrder::None)
        track = getTrackAbsolute(seqNum);
    if (track.isEmpty() && m_currentPlayList && seqNum < m_currentPlayList->getSize())
        m_shuffleOrder = before;
    return track;
}

OrvoRoles PlayListPlayLogic::getPreviousTrack() {
    m_shuffleOrder.returnToPlaying();
    OrvoRoles result = m_shuffleEnabled ? shuffledTrack(&PlayListPlayLogic::getPrevShuffleItem)
                                        : getTrackRelative(-1);
    if (result.isEmpty() && m_currentPlayList && m_repeatMode == RepeatAll) {
        // The last one of the list. Under shuffle the order has wrapped already, unless it is empty
        // or has a track that is no more.
        result = getTrackAbsolute(m_currentPlayList->getSize() - 1);
        if (result.isEmpty())
            LOG4CPLUS_WARN(
                playLogicLog(),
                "Playlist should wrap around and continue with last track, but does not contain any tracks");
    }
    return result;
}

// --- requests ---

void PlayListPlayLogic::playInternal(const CMSetDataRequest& request,
                                     const OrvoPlayLogicPlayArgs& args) {
    CM_ENTER_ARGS(playLogicLog(), "args=" << loggedValue(args.toVariant()));
    // The members are set directly: the setters would write into the playlist that is being left.
    // Repeat one is forgotten here: a playlist does not keep it.
    setCurrentPlayList(nullptr);
    m_shuffleEnabled = false;
    m_repeatMode = RepeatOff;
    m_shuffleOrder = ShuffleOrder();
    m_announcedRoles = OrvoRoles();
    m_hasPlayingItem = false;
    m_errorCount = 0;
    m_nextMediaPrepared = false;

    const OrvoRoles mediaRoles = args.mediaRoles();
    const OrvoRoles trackRoles = args.trackRoles();
    const CMPath path = mediaRoles.path();
    if (args.type() == OrvoPlayLogicPlayArgs::ContainerType) {
        if (!path.isEmpty()) {
            LOG4CPLUS_DEBUG(playLogicLog(), "mediaRoles path is " << loggedText(path.toString())
                                                                  << " - playing list");
            startPlayback(path, args.index(), request);
        } else {
            LOG4CPLUS_DEBUG(playLogicLog(),
                            "mediaRoles path is empty - playing trackRoles directly");
            playTrackRoles(trackRoles);
        }
    } else if (mediaRoles.type() == OrvoRolesType::Container) {
        startPlayback(path, 0, request);
    }
    const bool isRefused = request.reply().isFinished();
    if (!isRefused)
        request.reply().setValue(QVariant());
}

void PlayListPlayLogic::startPlayback(const CMPath& path, int index, CMSetDataRequest request) {
    CM_ENTER_ARGS(playLogicLog(), " track=" << index);
    PlayListBase* pl = nullptr;
    if (path.startsWith(OrvoPlayListPlGetItemsPath())) {
        const QStringList components = path.splitBase();
        const int plid = components.isEmpty() ? 0 : components.last().toInt();
        if (plid == 0) {
            LOG4CPLUS_ERROR(playLogicLog(), "playInternal called for invalid playlist container "
                                                << loggedText(path.toString()));
            request.reply().setError(CMError(QStringLiteral("PlayList Error"),
                                             TrString(trExtractContext(__PRETTY_FUNCTION__),
                                                      "Play called on invalid playlist container"),
                                             CMError::DefaultTitle()));
            return;
        }
        pl = m_manager->getPlayListByUid(plid);
    } else if (path.startsWith(OrvoPlayListPqGetItemsPath())) {
        pl = m_manager->getPlayQueue();
    }
    if (!pl)
        return;

    setCurrentPlayList(pl);
    const bool shuffle = pl->getShuffle();
    const RepeatMode repeat = pl->getRepeatAll() ? RepeatAll : RepeatOff;
    setPlayMode(PlayMode{shuffle, repeat}.number());
    LOG4CPLUS_DEBUG(playLogicLog(), "index=" << index << " size=" << pl->getSize());
    playTrackRoles(getTrackAbsolute(index));
    setShuffleEnabled(shuffle);
    setRepeatMode(repeat);
}

void PlayListPlayLogic::makePosition(int seqNum) {
    m_currentPlayList->setEnded(false);
    m_currentPlayList->setLastSequenceNumber(seqNum);
}

void PlayListPlayLogic::playTrackRoles(OrvoRoles roles) {
    const OrvoValue position = roles.value();
    if (m_currentPlayList && position.containsI32_())
        makePosition(position.i32());
    m_hasPlayingItem = !roles.isEmpty();
    m_shuffleOrder.playAtCursor();
    sendPlayCommand(roles, {});
    Q_EMIT upNextChanged();
}

void PlayListPlayLogic::stopInternal(const CMSetDataRequest& request) {
    CM_ENTER(playLogicLog());
    setCurrentPlayList(nullptr);
    StreamerPlayLogic::stopInternal(request);
}

void PlayListPlayLogic::skip(const CMSetDataRequest& request,
                             OrvoRoles (PlayListPlayLogic::*track)(), const char* whenThereIsNone) {
    const ShuffleOrder before = m_shuffleOrder;
    const OrvoRoles roles = (this->*track)();
    if (!roles.isEmpty()) {
        m_announcedRoles = roles;
        playTrackRoles(roles);
    } else {
        LOG4CPLUS_DEBUG(playLogicLog(), whenThereIsNone);
        // What is announced still follows.
        if (before.isAnnounced())
            m_shuffleOrder = before;
    }
    request.reply().setValue(QVariant());
}

void PlayListPlayLogic::nextInternal(const CMSetDataRequest& request) {
    skip(request, &PlayListPlayLogic::getNextTrack,
         "Reached last item of playlist for nextInternal");
}

void PlayListPlayLogic::previousInternal(const CMSetDataRequest& request) {
    skip(request, &PlayListPlayLogic::getPreviousTrack,
         "Reached first item of playlist for previousInternal");
}

void PlayListPlayLogic::changePlayModeInternal(const CMSetDataRequest& request) {
    const int newMode = OrvoPlayLogicChangePlayModeArgs(request.value().toHash()).playMode();
    const int previousMode = playMode();
    LOG4CPLUS_DEBUG(playLogicLog(),
                    "previous mode: " << OrvoPlayerPlayMode::toString(previousMode)
                                      << " new mode: " << OrvoPlayerPlayMode::toString(newMode));
    setPlayMode(OrvoPlayerPlayMode::Enum(newMode));
    if (const std::optional<PlayMode> mode = PlayMode::fromNumber(newMode)) {
        const std::optional<PlayMode> previous = PlayMode::fromNumber(previousMode);
        const bool wasShuffled = previous && previous->isShuffled;
        // A command on the playing list has published the new mode already; then only our own flag
        // is behind.
        if (mode->isShuffled != wasShuffled || mode->isShuffled != m_shuffleEnabled)
            setShuffleEnabled(mode->isShuffled);
        setRepeatMode(mode->repeat);
    }
    if (m_nextMediaPrepared)
        prepareNextMedia();
    request.reply().setValue(QVariant());
}

bool PlayListPlayLogic::publishedShuffle() const {
    const std::optional<PlayMode> mode = PlayMode::fromNumber(playMode());
    return mode ? mode->isShuffled : m_shuffleEnabled;
}

PlayListPlayLogic::RepeatMode PlayListPlayLogic::publishedRepeat() const {
    const std::optional<PlayMode> mode = PlayMode::fromNumber(playMode());
    return mode ? mode->repeat : m_repeatMode;
}

OrvoPlayLogicPlayModesSupported PlayListPlayLogic::playModesSupported() {
    OrvoPlayLogicPlayModesSupported supported;
    supported.setShuffle(true);
    supported.setShuffleRepeatAll(true);
    supported.setShuffleRepeatOne(true);
    supported.setRepeatOne(true);
    supported.setRepeatAll(true);
    return supported;
}
