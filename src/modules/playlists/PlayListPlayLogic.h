#pragma once

#include "OrvoRoles.h"
#include "PlayMode.h"
#include "ShuffleOrder.h"
#include "StreamerPlayLogic.h"
#include "UpNext.h"

class PlayListBase;
class PlayListManager;
class PlayListWorker;

// The module's play logic: what of the current playlist plays first, next and before, with shuffle
// and repeat, and how that stays right while the list is edited. The position is not kept here but
// in the playlist, as its last sequence number. Made by the worker, worker's thread only. No
// current playlist or no such track: empty roles.
//
// Tracks and requests are in PlayListPlayLogic.cpp, the player's calls in
// PlayListPlayLogicPlayer.cpp, drawing and walking the shuffle order in
// PlayListPlayLogicShuffle.cpp, edits of the current playlist in PlayListPlayLogicEdits.cpp.
class PlayListPlayLogic : public StreamerPlayLogic {
    Q_OBJECT
public:
    using RepeatMode = PlayMode::RepeatMode;
    using enum PlayMode::RepeatMode;

    PlayListPlayLogic(PlayListWorker* worker, PlayListManager* manager, QObject* parent);

    void setCurrentPlayList(PlayListBase* pl);
    void setRepeatMode(RepeatMode mode);

    OrvoRoles getTrackRelative(int offset);
    OrvoRoles getTrackAbsolute(int seqNum);
    OrvoRoles getCurrentTrack();
    // Seen from the playing item, whatever is announced. They move the shuffle cursor. Empty at the
    // end, and after five tracks in a row that failed.
    OrvoRoles getNextTrack();
    OrvoRoles getPreviousTrack();

    void playInternal(const CMSetDataRequest& request, const OrvoPlayLogicPlayArgs& args) override;
    void stopInternal(const CMSetDataRequest& request) override;
    void nextInternal(const CMSetDataRequest& request) override;
    void previousInternal(const CMSetDataRequest& request) override;
    void changePlayModeInternal(const CMSetDataRequest& request) override;
    OrvoPlayLogicPlayModesSupported playModesSupported() override;
    void prepareNextMedia() override;
    OrvoPlayLogicData mediaPlaybackStarted(const OrvoRoles& oldRoles,
                                           const OrvoRoles& newRoles) override;
    void tryResumePlayback() override;

    UpNext upNext() const;

    // Answers the request only where it refuses the path; playInternal gives every other answer.
    void startPlayback(const CMPath& path, int index, CMSetDataRequest request);
    // Makes the track the position, if it carries one, and sends it to the player.
    void playTrackRoles(OrvoRoles roles);
    // Lets the published track roles show the position that an edit gave the track.
    void updateSequenceNumberInData();

    // --- the shuffle order ---

    void setShuffleEnabled(bool enabled);
    // A new order that starts with `startItem`, negative: with any.
    void initShuffle(int startItem);
    // Shuffles the order from position `from` to its end.
    void randomizeShuffleItems(int from);
    // A sequence number, -1 for none.
    int getNextShuffleItem();
    int getPrevShuffleItem();
    void debugShuffleItems() const;

Q_SIGNALS:
    // What upNext() returns may have changed.
    void upNextChanged();

private Q_SLOTS:
    void on_playlist_deleted(int plid);
    void on_currentPlayList_cleared();
    void on_currentPlayList_itemsAdded(const QString& positionStr, int firstSeqNum, int count);
    void on_currentPlayList_itemsInserted(const QList<int>& positions);
    void on_currentPlayList_itemsRemoved(const QList<int>& indices, int lastSeqNumBeforeRemove);
    void on_currentPlayList_itemMoved(int from, int to);
    void on_currentPlayList_itemsMoved();
    void on_currentPlayList_itemsReordered(const QList<int>& order);
    void on_currentPlayList_shuffleChanged(bool newValue);
    void on_currentPlayList_repeatAllChanged(bool newValue);

private:
    friend class PlayLogicProbe; // the tests' look at the order and the cursor

    // How many tracks in a row may fail before playback is given up.
    static constexpr int MaxErrorCount = 5;

    // Calls wire(signal, slot) for each signal of the current playlist that is followed.
    template <typename Wire>
    void wireCurrentPlayList(Wire wire);
    OrvoRoles trackAt(int seqNum, const char* whenThereIsNone);
    // The track that a step in the shuffled order leads to.
    OrvoRoles shuffledTrack(int (PlayListPlayLogic::*step)());
    void stopPlayer();
    // Plays what `track` finds, seen from the playing item.
    void skip(const CMSetDataRequest& request, OrvoRoles (PlayListPlayLogic::*track)(),
              const char* whenThereIsNone);
    // Shuffle and repeat as they will be once the published mode is in force.
    bool publishedShuffle() const;
    RepeatMode publishedRepeat() const;
    // The track is heard from here on.
    void makePosition(int seqNum);
    // The announced track has become the position.
    void takeOverAnnounced();
    // Keeps the announced item's sequence number on it: `moved` maps old to new, -1 for gone.
    template <typename Moved>
    void renumberAnnounced(Moved moved);
    // After an edit: the announced item is announced anew if it is no longer next.
    void announceAnew();
    // The sequence number of the track behind the playing one, -1 for none.
    int nextNumber() const;
    void addToShuffle(int position, int firstSeqNum, int count);

    PlayListWorker* m_worker;
    PlayListManager* m_manager;
    PlayListBase* m_currentPlayList = nullptr;
    bool m_shuffleEnabled = false;
    RepeatMode m_repeatMode = RepeatOff;
    // It also knows whether an item is announced, with shuffle off, too.
    ShuffleOrder m_shuffleOrder;
    // The item that the player is to start and has not started yet: announced, or sent by a skip.
    OrvoRoles m_announcedRoles;
    // From a play command until the end: what is at the last sequence number is heard.
    bool m_hasPlayingItem = false;
    int m_errorCount = 0;
    // The player was told what comes next and has not started it: a change of mode tells it anew.
    bool m_nextMediaPrepared = false;
};
