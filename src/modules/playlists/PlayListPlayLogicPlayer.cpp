#include "ModuleLog.h"
#include "PlayListBase.h"
#include "PlayListPlayLogic.h"
#include "PlayLogicLog.h"

void PlayListPlayLogic::prepareNextMedia() {
    m_shuffleOrder.returnToPlaying();
    const int playing = m_shuffleOrder.cursor();
    const OrvoRoles roles = m_repeatMode == RepeatOne ? getCurrentTrack() : getNextTrack();
    m_shuffleOrder.setAnnounced(playing);
    if (!roles.isEmpty()) {
        m_announcedRoles = roles;
        sendSetNextMediaCommand(roles, {});
    } else {
        LOG4CPLUS_DEBUG(playLogicLog(), "Reached last item of playlist for prepareNextMedia");
        // What was announced before is revoked with it and must not become the position.
        m_announcedRoles = OrvoRoles();
        sendNoNextMediaCommand();
    }
    m_nextMediaPrepared = true;
}

void PlayListPlayLogic::takeOverAnnounced() {
    m_shuffleOrder.playAtCursor();
    const OrvoValue position = m_announcedRoles.value();
    if (!m_currentPlayList || !position.containsI32_())
        return;
    makePosition(position.i32());
    m_announcedRoles = OrvoRoles();
    Q_EMIT upNextChanged();
}

OrvoPlayLogicData PlayListPlayLogic::mediaPlaybackStarted(const OrvoRoles& oldRoles,
                                                          const OrvoRoles& newRoles) {
    LOG4CPLUS_DEBUG(playLogicLog(), "newRoles=" << loggedValue(newRoles.toVariant()));
    LOG4CPLUS_DEBUG(playLogicLog(), "oldRoles=" << loggedValue(oldRoles.toVariant()));
    OrvoPlayLogicControls controls;
    controls.setPause(true);
    controls.setNext(m_currentPlayList != nullptr);
    controls.setPrevious(m_currentPlayList != nullptr);
    const OrvoMetaData metaData = newRoles.mediaData().metaData();
    const bool seekTime = metaData.containsAllowSeekTime() ? metaData.allowSeekTime() : true;
    LOG4CPLUS_DEBUG(playLogicLog(), "Enabling seekTime control: " << seekTime);
    controls.setSeekTime(seekTime);
    const bool seekBytes = metaData.containsAllowSeekBytes() ? metaData.allowSeekBytes() : true;
    LOG4CPLUS_DEBUG(playLogicLog(), "Enabling seekBytes control: " << seekBytes);
    controls.setSeekBytes(seekBytes);
    controls.setPlayMode(playModesSupported());

    // Something may have been announced between a play command and the start of its item: that is
    // still to come.
    const bool announcedStarted = newRoles.id().isEmpty() || newRoles.id() == m_announcedRoles.id();

    OrvoPlayLogicData result = data();
    // The player has the item as it was handed over; edits since then may have given it another
    // number.
    const OrvoRoles present = announcedStarted && m_announcedRoles.value().containsI32_()
                                  ? m_announcedRoles
                                  : getCurrentTrack();
    if (newRoles == result.trackRoles() && newRoles.value().containsI32_() &&
        newRoles.id() == present.id()) {
        OrvoRoles renumbered = newRoles;
        renumbered.setValue(present.value());
        result.setTrackRoles(renumbered);
    }
    result.removeAttribute(OrvoPlayLogicData::Error());
    result.removeAttribute(OrvoPlayLogicData::StreamerError());
    result.setControls(controls);
    LOG4CPLUS_DEBUG(playLogicLog(), "New playlogic data: " << loggedValue(result.toVariant()));
    m_hasPlayingItem = true;
    if (announcedStarted) {
        m_nextMediaPrepared = false;
        takeOverAnnounced();
    } else {
        m_nextMediaPrepared = m_shuffleOrder.isAnnounced();
    }
    return result;
}

void PlayListPlayLogic::tryResumePlayback() {
    takeOverAnnounced();
    const OrvoRoles roles = getNextTrack();
    if (!roles.isEmpty()) {
        playTrackRoles(roles);
    } else {
        m_hasPlayingItem = false;
        if (m_currentPlayList && m_errorCount <= MaxErrorCount)
            m_currentPlayList->setEnded(true);
        playbackEnded();
        Q_EMIT upNextChanged();
    }
}

UpNext PlayListPlayLogic::upNext() const {
    UpNext result;
    if (!m_currentPlayList || !m_hasPlayingItem)
        return result;
    result.list = m_currentPlayList;
    result.revision = m_currentPlayList->getRevision();
    result.size = m_currentPlayList->getSize();
    result.playing = m_currentPlayList->getLastSequenceNumber();
    result.repeatsOne = m_repeatMode == RepeatOne;
    result.wraps = m_repeatMode == RepeatAll;
    result.isShuffled = m_shuffleEnabled;
    if (m_shuffleEnabled) {
        result.order = m_shuffleOrder.entries();
        result.place = m_shuffleOrder.playingPlace();
    }
    return result;
}
