#pragma once

#include <ostream>

#include <QVector>

#include "ModuleFixture.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListPlayLogic.h"
#include "RecordingPlayer.h"

// The tests' look at what the play logic keeps to itself; a test may lay it out by hand.
class PlayLogicProbe {
public:
    explicit PlayLogicProbe(PlayListPlayLogic* logic) : m(logic) {}

    PlayListManager* manager() { return m->m_manager; }
    PlayListBase* current() { return m->m_currentPlayList; }
    bool& shuffle() { return m->m_shuffleEnabled; }
    PlayListPlayLogic::RepeatMode& repeat() { return m->m_repeatMode; }
    QVector<int>& order() { return m->m_shuffleSeq; }
    int& cursor() { return m->m_shuffleCurIndex; }
    OrvoRoles& currentTrackRoles() { return m->m_currentTrackRoles; }
    int& errorCount() { return m->m_errorCount; }
    bool& nextMediaPrepared() { return m->m_nextMediaPrepared; }

private:
    PlayListPlayLogic* m;
};

// The module's play logic over real playlists, and the recording player.
class PlayLogicFixture : public ModuleFixture {
protected:
    using Position = OrvoPlayListAddPosition;

    PlayListPlayLogic* logic();
    PlayLogicProbe probe() { return PlayLogicProbe(logic()); }
    PlayListManager* manager() { return probe().manager(); }

    // "abc": a new playlist with the items "a", "b", "c".
    PlayListBase* listOf(const QString& titles);
    PlayListBase* queueOf(const QString& titles);
    static QList<OrvoPlayListItem> itemsOf(const QString& titles);
    static int add(PlayListBase* pl, Position::Enum position, const QString& titles);
    static QString titlesOf(PlayListBase* pl);
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

    RecordingPlayer player;
};

bool isPermutation(const QVector<int>& order, int size);

// Qt values in test messages.
void PrintTo(const QString& text, std::ostream* out);
void PrintTo(const QStringList& texts, std::ostream* out);
void PrintTo(const QVector<int>& numbers, std::ostream* out);
