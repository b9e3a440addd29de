#include "ModelFixture.h"

#include <algorithm>

#include <QCoreApplication>
#include <QEvent>

void ModelFixture::TearDown() {
    dropManager();
    StoreFixture::TearDown();
}

PlayListManager& ModelFixture::manager() {
    if (!m_manager)
        m_manager = std::make_unique<PlayListManager>(&database());
    return *m_manager;
}

PlayListManager& ModelFixture::restart(int itemsLimit) {
    dropManager();
    reopen(itemsLimit);
    return manager();
}

void ModelFixture::dropManager() {
    m_manager.reset();
    settle();
}

void ModelFixture::settle() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

PlayListBase& ModelFixture::playList(const QString& letters, int last, const QString& name) {
    PlayListBase* pl = manager().createPlayList(name);
    if (!letters.isEmpty()) {
        EXPECT_EQ(0, add(*pl, OrvoPlayListAddPosition::Append, letters));
    }
    if (last != pl->getLastSequenceNumber())
        pl->setLastSequenceNumber(last);
    return *pl;
}

CollectionBase& ModelFixture::collection(const QString& name, const QList<PlayListBase*>& members) {
    CollectionBase* cl = manager().createCollection(name);
    for (PlayListBase* pl : members)
        EXPECT_TRUE(cl->addPlayList(pl));
    return *cl;
}

int ModelFixture::add(PlayListBase& pl, OrvoPlayListAddPosition::Enum position,
                      const QString& letters) {
    return pl.addItems(position, letterItems(letters));
}

QList<OrvoPlayListItem> ModelFixture::letterItems(const QString& letters) {
    QList<OrvoPlayListItem> result;
    for (QChar letter : letters)
        result.append(item(QString(letter)));
    return result;
}

QString ModelFixture::letters(const PlayListBase& pl) {
    return stored(pl.getUid()).remove(QLatin1Char(' '));
}

QList<int> ModelFixture::membersInFile(const CollectionBase& cl) {
    QList<int> uids;
    const QStringList texts =
        query(QStringLiteral("SELECT playlist FROM collections_playlists WHERE collection = %1"
                             " ORDER BY playlist")
                  .arg(cl.getUid()));
    for (const QString& uid : texts)
        uids.append(uid.toInt());
    return uids;
}

void ModelFixture::expectInStep() {
    expectInvariants();
    expectInStep(*manager().getPlayQueue());
    const QList<PlayListBase*> playlists = manager().getAllPlayList();
    for (PlayListBase* pl : playlists) {
        expectInStep(*pl);
        EXPECT_EQ(pl, manager().getPlayListByUid(pl->getUid()));
    }
    EXPECT_EQ(playlists.size(), queryInt(QStringLiteral("SELECT COUNT(*) FROM playlists")) - 1);

    const QList<CollectionBase*> collections = manager().getAllCollection();
    for (CollectionBase* cl : collections) {
        EXPECT_EQ(
            QStringList(cl->getName()),
            query(QStringLiteral("SELECT name FROM collections WHERE uid = %1").arg(cl->getUid())));
        QList<int> members;
        const QList<PlayListBase*> objects = cl->getPlayLists();
        for (PlayListBase* pl : objects)
            members.append(pl->getUid());
        std::sort(members.begin(), members.end());
        EXPECT_EQ(membersInFile(*cl), members);
    }
    EXPECT_EQ(collections.size(), queryInt(QStringLiteral("SELECT COUNT(*) FROM collections")));
}

void ModelFixture::expectInStep(PlayListBase& pl) {
    const QString memory = QStringLiteral("%1 shuffle %2 repeat %3 last %4 size %5")
                               .arg(pl.getName())
                               .arg(int(pl.getShuffle()))
                               .arg(int(pl.getRepeatAll()))
                               .arg(pl.getLastSequenceNumber())
                               .arg(pl.getSize());
    EXPECT_EQ(QStringList(memory),
              query(QStringLiteral(
                        "SELECT name || ' shuffle ' || shuffle || ' repeat ' || repeatAll ||"
                        " ' last ' || lastPlayedIndex || ' size ' ||"
                        " (SELECT COUNT(*) FROM playlists_items WHERE playlist = playlists.uid)"
                        " FROM playlists WHERE uid = %1")
                        .arg(pl.getUid())))
        << "playlist " << pl.getUid();
}
