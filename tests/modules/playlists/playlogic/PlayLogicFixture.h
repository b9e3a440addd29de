#pragma once

#include <QVector>

#include "ModuleFixture.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayLogicProbe.h"
#include "RecordingPlayer.h"

// The module's play logic over real playlists, and the recording player.
class PlayLogicFixture : public ModuleFixture {
protected:
    using Position = OrvoPlayListAddPosition;

    PlayListPlayLogic* logic();
    PlayLogicProbe probe() { return PlayLogicProbe(logic()); }
    PlayListManager* manager() { return probe().manager(); }

    // "abc": a new playlist with the items "a", "b", "c".
    PlayListBase* playList(const QString& titles);
    PlayListBase* queueOf(const QString& titles);
    static QList<OrvoPlayListItem> letterItems(const QString& titles);
    static int add(PlayListBase* pl, Position::Enum position, const QString& titles);
    static QString letters(PlayListBase* pl);
    static CMPath itemsPath(PlayListBase* pl);

    // Requests at the play-logic path.
    Answer request(OrvoPlayLogicRequestKind::Enum kind, OrvoPlayLogicRequest args = {});
    Answer play(PlayListBase* pl, int index);
    Answer play(const CMPath& container, int index);
    Answer next() { return request(OrvoPlayLogicRequestKind::Next); }
    Answer previous() { return request(OrvoPlayLogicRequestKind::Previous); }
    Answer stop() { return request(OrvoPlayLogicRequestKind::Stop); }
    Answer changeMode(int mode);

    // A list that plays from `index` on, its item started, the commands so far forgotten.
    PlayListBase* playing(const QString& titles, int index = 0);
    // Shuffled, with the order laid out by hand.
    PlayListBase* playingShuffled(const QString& titles, const QVector<int>& order, int cursor);

    // "b@1" of the published track roles.
    QString published();

    // The play logic's own members, all but the current list, are as at its beginning.
    void expectInitialMembers();

    RecordingPlayer player;
};

bool isPermutation(const QVector<int>& order, int size);
