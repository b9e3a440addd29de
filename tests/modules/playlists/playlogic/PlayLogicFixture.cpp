#include "PlayLogicFixture.h"

#include <algorithm>

#include "PlayListWorker.h"

PlayListPlayLogic* PlayLogicFixture::logic() {
    auto* found =
        dynamic_cast<PlayListPlayLogic*>(worker()->nodes()->find(OrvoPlayListsPlayLogicPath()));
    EXPECT_NE(found, nullptr);
    return found;
}

QList<OrvoPlayListItem> PlayLogicFixture::letterItems(const QString& titles) {
    QList<OrvoPlayListItem> items;
    for (const QChar title : titles)
        items.append(makeItem(QString(title)));
    return items;
}

int PlayLogicFixture::add(PlayListBase* pl, Position::Enum position, const QString& titles) {
    return pl->addItems(position, letterItems(titles));
}

PlayListBase* PlayLogicFixture::playList(const QString& titles) {
    PlayListBase* pl = manager()->getPlayListByUid(createPlayList(QStringLiteral("list")));
    if (!titles.isEmpty()) {
        EXPECT_EQ(0, add(pl, Position::Append, titles));
    }
    return pl;
}

PlayListBase* PlayLogicFixture::queueOf(const QString& titles) {
    PlayListBase* pl = manager()->getPlayQueue();
    EXPECT_EQ(0, add(pl, Position::Append, titles));
    return pl;
}

QString PlayLogicFixture::letters(PlayListBase* pl) {
    QString result;
    for (const OrvoPlayListItem& item : pl->getItems(0, pl->getSize()))
        result += item.title();
    return result;
}

CMPath PlayLogicFixture::itemsPath(PlayListBase* pl) {
    return pl->getUid() == 0 ? OrvoPlayListPqGetItemsPath()
                             : OrvoPlayListPlGetItemsPath() + QString::number(pl->getUid());
}

Answer PlayLogicFixture::request(OrvoPlayLogicRequestKind::Enum kind, OrvoPlayLogicRequest args) {
    args.setKind(kind);
    return send(OrvoPlayListsPlayLogicPath(), args);
}

Answer PlayLogicFixture::play(const CMPath& container, int index) {
    OrvoRoles mediaRoles;
    mediaRoles.setPath(container);
    OrvoPlayLogicPlayArgs args;
    args.setMediaRoles(mediaRoles);
    args.setIndex(index);
    args.setType(OrvoPlayLogicPlayArgs::ContainerType);
    return request(OrvoPlayLogicRequestKind::Play, args);
}

Answer PlayLogicFixture::play(PlayListBase* pl, int index) {
    return play(itemsPath(pl), index);
}

Answer PlayLogicFixture::changeMode(int mode) {
    OrvoPlayLogicChangePlayModeArgs args;
    args.setPlayMode(OrvoPlayerPlayMode::Enum(mode));
    return request(OrvoPlayLogicRequestKind::ChangePlayMode, args);
}

PlayListBase* PlayLogicFixture::playing(const QString& titles, int index) {
    PlayListBase* pl = playList(titles);
    EXPECT_FALSE(play(pl, index).failed);
    player.start();
    player.commands.clear();
    return pl;
}

PlayListBase* PlayLogicFixture::playingShuffled(const QString& titles, const QVector<int>& order,
                                                int cursor) {
    PlayListBase* pl = playing(titles, order.value(cursor));
    changeMode(OrvoPlayerPlayMode::Shuffle);
    EXPECT_TRUE(player.commands.isEmpty());
    probe().order() = order;
    probe().cursor() = cursor;
    return pl;
}

QString PlayLogicFixture::published() {
    return RecordingPlayer::text(logic()->data().trackRoles());
}

void PlayLogicFixture::expectInitialMembers() {
    EXPECT_FALSE(probe().shuffle());
    EXPECT_EQ(PlayListPlayLogic::RepeatOff, probe().repeat());
    EXPECT_EQ(QVector<int>(), probe().order());
    EXPECT_EQ(-1, probe().cursor());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    EXPECT_EQ(0, probe().errorCount());
    EXPECT_FALSE(probe().nextMediaPrepared());
}

bool isPermutation(const QVector<int>& order, int size) {
    QVector<int> sorted = order;
    std::sort(sorted.begin(), sorted.end());
    if (sorted.size() != size)
        return false;
    for (int i = 0; i < size; ++i) {
        if (sorted.at(i) != i)
            return false;
    }
    return true;
}
