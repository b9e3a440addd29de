
#include "CommandFixture.h"
#include "PlayLogicInterface.h"
#include "PropertyModel.h"
#include "Random.h"

namespace {

// An argument as it is sent, and as what the command has to take it.
struct Id {
    QVariant sent;
    int number;
};

// One random sequence of commands over a store of its own. Every choice comes from the seed.
class Sequence : public CommandFixture {
public:
    explicit Sequence(unsigned seed) : m_random(seed), m_model(pick({0, 0, 12, 25})) {
        setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), m_model.limit);
        worker();
    }
    ~Sequence() override { m_pending.clear(); }
    void TestBody() override {}

    void run(int steps) {
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            m_what = QStringLiteral("step %1").arg(step);
            (this->*pick(operations()))();
            compare();
            if (HasFailure())
                ADD_FAILURE() << "after " << qPrintable(m_what);
        }
        if (!HasFailure())
            compareListings();
    }

private:
    using Operation = void (Sequence::*)();
    struct Pending {
        LateAnswer answer;
        CMReply<QVariant> source;
        int plid;
        int birth;          // of the playlist that had the id by then
        QStringList before; // titles that came at once, ahead of those that are awaited
        QStringList awaited;
        int mode;
    };

    // An operation that stands here twice comes twice as often.
    static const QVector<Operation>& operations() {
        static const QVector<Operation> all = {&Sequence::create,
                                               &Sequence::create,
                                               &Sequence::rename,
                                               &Sequence::shuffle,
                                               &Sequence::repeat,
                                               &Sequence::remove,
                                               &Sequence::clear,
                                               &Sequence::removeItems,
                                               &Sequence::removeItems,
                                               &Sequence::setOrder,
                                               &Sequence::addAt,
                                               &Sequence::addAt,
                                               &Sequence::moveItems,
                                               &Sequence::moveItems,
                                               &Sequence::moveItems,
                                               &Sequence::addExternal,
                                               &Sequence::addExternal,
                                               &Sequence::addExternal,
                                               &Sequence::addPaths,
                                               &Sequence::addPaths,
                                               &Sequence::addPaths,
                                               &Sequence::merge,
                                               &Sequence::play,
                                               &Sequence::prepare,
                                               &Sequence::createCollection,
                                               &Sequence::addMember,
                                               &Sequence::addMember,
                                               &Sequence::removeMember,
                                               &Sequence::deleteCollection,
                                               &Sequence::answerPending,
                                               &Sequence::answerPending,
                                               &Sequence::startAnew};
        return all;
    }

    int below(int bound) { return m_random.below(bound); }
    bool oneIn(int chances) { return below(chances) == 0; }
    template <typename T>
    T pick(const QVector<T>& values) {
        return values.at(below(values.size()));
    }
    int pick(std::initializer_list<int> values) { return pick(QVector<int>(values)); }

    template <typename Map>
    Id pickId(const Map& known) {
        if (oneIn(8))
            return pick(QVector<Id>{{-1, -1},
                                    {QVariant(), -1},
                                    {"x", -1},
                                    {Q_INT64_C(4294967296), -1},
                                    {99, 99},
                                    {true, -1}});
        if (known.isEmpty())
            return {1, 1};
        const int id = pick(known.keys().toVector());
        return oneIn(4) ? Id{QString::number(id), id} : Id{id, id};
    }
    Id playListId() { return pickId(m_model.playLists); }
    Id collectionId() { return pickId(m_model.collections); }
    QString name() {
        return pick(QVector<QString>{"", "Party", "%1 %2", "ä ö 𝄞", QString("n%1").arg(++m_count)});
    }
    QString freshTitle() { return QString("t%1").arg(++m_count); }
    // Where to add: sent, and taken as. -9: absent.
    Id addMode() {
        return pick(QVector<Id>{{0, 0},
                                {"now", 0},
                                {1, 1},
                                {"afterCurrent", 1},
                                {2, 2},
                                {"append", 2},
                                {-9, 2},
                                {3, 3},
                                {-1, -1},
                                {"x", 99}});
    }
    static void insertMode(QVariantHash& args, const Id& mode) {
        if (mode.sent != QVariant(-9))
            args.insert("mode", mode.sent);
    }
    int sizeOf(int plid) const { return m_model.playLists.value(plid).titles.size(); }
    QList<int> positions(int size) {
        QList<int> result;
        for (int count = below(5); count > 0; --count)
            result.append(oneIn(12) ? below(size + 3) - 1 : below(std::max(size, 1)));
        return result;
    }
    static QVariantList asList(const QList<int>& numbers) {
        QVariantList list;
        for (int number : numbers)
            list.append(number);
        return list;
    }

    Answer sent(const CMPath& path, const QVariantHash& args) {
        m_what += ' ' + path.toString();
        return send(path, args);
    }
    qint64 revisionOf(int plid) {
        const CMPath path = plid == 0 ? OrvoPlayListPqGetItemsPath()
                                      : OrvoPlayListPlGetItemsPath() + QString::number(plid);
        return rows(path, 0, 0, {"title"}).revision();
    }
    // An edit that is made for the list as it is, or before that for another state of it, which
    // changes nothing. What takes no revision ignores it.
    QVariantHash withRevision(const CMPath& path, QVariantHash args) {
        if (!oneIn(3))
            return args;
        const qint64 revision = revisionOf(args.value("plid").toInt());
        const auto takesRevision = [&path](const Command& command) {
            return command.path() == path && command.takesRevision;
        };
        if (std::any_of(commands().begin(), commands().end(), takesRevision) && oneIn(2)) {
            args.insert("revision", revision - 1 - below(3));
            const Answer answer = sent(path, args);
            EXPECT_EQ("Conflict", answer.error.name()) << qPrintable(path.toString());
            EXPECT_EQ(revision, revisionOf(args.value("plid").toInt()));
        }
        args.insert("revision", revision);
        return args;
    }
    void expect(bool success, const CMPath& path, const QVariantHash& asked) {
        const QVariantHash args = success ? withRevision(path, asked) : asked;
        const Answer answer = sent(path, args);
        ASSERT_TRUE(answer.answered);
        EXPECT_EQ(success, !answer.failed) << qPrintable(answer.message());
        if (success) {
            EXPECT_TRUE(answer.result() == OrvoValue::fromBool(true));
        } else {
            EXPECT_TRUE(answer.message().startsWith("Could not ")) << qPrintable(answer.message());
        }
    }
    void expectCreated(std::optional<int> id, const CMPath& path, const QVariantHash& args) {
        const Answer answer = sent(path, args);
        EXPECT_EQ(id.has_value(), !answer.failed);
        EXPECT_EQ(id.value_or(0), answer.result().i32());
    }
    // With position "now" and something added, the player has been asked for the first new item,
    // else not at all.
    void expectStart(int plid, int added, int mode) {
        const QList<CMSetDataRequest> asked = others.player.requests;
        others.player.requests.clear();
        ASSERT_EQ(added > 0 && mode == 0 ? 1 : 0, asked.size());
        if (asked.isEmpty())
            return;
        const OrvoPlayLogicPlayArgs args(asked.first().value().toHash());
        EXPECT_EQ(m_model.addedAt, args.index());
        EXPECT_EQ(m_model.playLists.value(plid).titles.value(m_model.addedAt),
                  args.trackRoles().title().toString());
    }

    void create() {
        const QString text = name();
        expectCreated(m_model.createPlayList(text), OrvoPlayListPlCreatePath(), {{"name", text}});
    }
    void createCollection() {
        const QString text = name();
        expectCreated(m_model.createCollection(text), OrvoPlayListClCreatePath(), {{"name", text}});
    }
    void rename() {
        const Id id = playListId();
        const QString text = name();
        expect(m_model.renamePlayList(id.number, text), OrvoPlayListPlSetNamePath(),
               {{"plid", id.sent}, {"name", text}});
    }
    void shuffle() {
        const Id id = playListId();
        const Id mode = pick(QVector<Id>{
            {0, 0}, {1, 1}, {"shuffleOn", 1}, {"shuffleOff", 0}, {2, 2}, {-3, -3}, {"x", 9}});
        expect(m_model.setShuffle(id.number, mode.number), OrvoPlayListPlSetShufflePath(),
               {{"plid", id.sent}, {"mode", mode.sent}});
    }
    void repeat() {
        const Id id = playListId();
        const Id mode = pick(QVector<Id>{
            {0, 0}, {1, 1}, {"repeatAll", 2}, {2, 2}, {"3", 3}, {4, 4}, {-3, -3}, {"x", 9}});
        expect(m_model.setRepeat(id.number, mode.number), OrvoPlayListPlSetRepeatPath(),
               {{"plid", id.sent}, {"mode", mode.sent}});
    }
    void remove() {
        const Id id = playListId();
        expect(m_model.deletePlayList(id.number), OrvoPlayListPlDeletePath(), {{"plid", id.sent}});
    }
    void clear() {
        const Id id = playListId();
        expect(m_model.clear(id.number), OrvoPlayListPlClearPath(), {{"plid", id.sent}});
    }
    void removeItems() {
        const Id id = playListId();
        const QList<int> items = positions(sizeOf(id.number));
        expect(m_model.removeItems(id.number, items), OrvoPlayListPlRemoveItemsPath(),
               {{"plid", id.sent}, {"items", asList(items)}});
    }
    void moveItems() {
        const Id id = playListId();
        const int size = sizeOf(id.number);
        const QList<int> items = positions(size);
        const int to = oneIn(12) ? below(size + 3) - 1 : below(std::max(size, 1));
        expect(m_model.moveItems(id.number, items, to), OrvoPlayListPlMoveItemspath(),
               {{"plid", id.sent}, {"to", to}, {"items", asList(items)}});
    }
    void setOrder() {
        const Id id = playListId();
        QList<int> order;
        for (int i = 0; i < sizeOf(id.number); ++i)
            order.append(i);
        std::shuffle(order.begin(), order.end(), m_random);
        if (oneIn(8))
            order.append(below(order.size() + 1));
        if (!order.isEmpty() && oneIn(8))
            order[below(order.size())] = below(order.size());
        expect(m_model.setOrder(id.number, order), OrvoPlayListPlSetOrderPath(),
               {{"plid", id.sent}, {"order", asList(order)}});
    }
    void play() {
        const Id id = playListId();
        const bool plays = m_model.canPlay(id.number);
        expect(plays, OrvoPlayListPlPlayPath(), {{"plid", id.sent}});
        EXPECT_EQ(plays ? 1 : 0, others.player.requests.size());
        others.player.requests.clear();
    }
    void deleteCollection() {
        const Id id = collectionId();
        expect(m_model.deleteCollection(id.number), OrvoPlayListClDeletePath(),
               {{"clid", id.sent}});
    }
    void addMember() {
        const Id clid = collectionId();
        const Id plid = playListId();
        expect(m_model.addMember(clid.number, plid.number), OrvoPlayListClAddItemPath(),
               {{"clid", clid.sent}, {"plid", plid.sent}});
    }
    void removeMember() {
        const Id clid = collectionId();
        const Id plid = playListId();
        expect(m_model.removeMember(clid.number, plid.number), OrvoPlayListClRemoveItemPath(),
               {{"clid", clid.sent}, {"plid", plid.sent}});
    }

    void addExternal() {
        const Id id = playListId();
        const Id mode = addMode();
        QStringList titles;
        QVariantList items;
        bool bad = false;
        for (int count = below(6); count > 0; --count) {
            QVariantHash item = itemHash(freshTitle());
            if (oneIn(12)) {
                item.remove(OrvoPlayListItem::OrvoRoles()); // left out
            } else if (oneIn(25)) {
                item.insert(OrvoPlayListItem::OrvoRoles(), "{\"type\":1,\"title\":\"container\"}");
                bad = true;
            } else {
                titles.append(item.value("title").toString());
            }
            items.append(item);
        }
        QVariantHash args{{"plid", id.sent}, {"items", items}};
        insertMode(args, mode);
        const int added = bad ? 0 : m_model.addItems(id.number, titles, mode.number);
        expect(added > 0, OrvoPlayListPlAddExternalItemsPath(), args);
        expectStart(id.number, added, mode.number);
    }

    void addAt() {
        const Id id = playListId();
        const bool isRun = oneIn(2);
        QStringList titles;
        for (int count = below(5); count > 0; --count)
            titles.append(freshTitle());
        const int size = sizeOf(id.number) + titles.size();
        QList<int> positions;
        for (int i = 0; i < size; ++i)
            positions.append(i);
        const int first = below(sizeOf(id.number) + 1);
        if (isRun) {
            positions = positions.mid(first, titles.size());
        } else {
            while (positions.size() > titles.size())
                positions.removeAt(below(positions.size()));
            if (!positions.isEmpty() && oneIn(8))
                positions.append(size + below(2));
        }
        const int added = m_model.addItemsAt(id.number, titles, positions, isRun);
        expect(added > 0, OrvoPlayListPlAddExternalItemsPath(),
               {{"plid", id.sent},
                {"items", itemHashes(titles)},
                {"at", isRun ? QVariant(first) : QVariant(asList(positions))}});
    }

    int birthOf(int plid) const { return m_model.playLists.value(plid).birth; }

    // Items of this module, of a source that answers now or later, and of no module.
    void addPaths() {
        const Id id = playListId();
        const Id mode = addMode();
        const QStringList entries = query("SELECT uid || ' ' || title FROM items");
        QStringList own;
        QStringList fromFiles;
        QVariantList ownPaths;
        QVariantList filePaths;
        bool ownEnded = false;
        for (int count = below(4); count > 0; --count) {
            if (entries.isEmpty() || oneIn(10)) {
                ownEnded = oneIn(2) || ownEnded;
                ownPaths.append(ownEnded ? "playlists:item/abc" : "playlists:item/99999");
                continue;
            }
            const QStringList entry = entries.at(below(entries.size())).split(' ');
            ownPaths.append("playlists:item/" + entry.at(0));
            if (!ownEnded)
                own.append(entry.at(1));
        }
        for (int count = below(4); count > 0; --count) {
            const QString title = freshTitle();
            filePaths.append("files:" + title);
            offer(others.files, "files:" + title, title);
            fromFiles.append(title);
        }
        QVariantList paths = ownPaths + filePaths;
        if (oneIn(5))
            paths.insert(below(paths.size() + 1), "attic:x");
        if (paths.isEmpty())
            return;
        QVariantHash args{{"plid", id.sent}, {"items", paths}};
        insertMode(args, mode);
        if (!filePaths.isEmpty() && id.number != -1 && oneIn(3)) {
            others.files.keepPrepareRequests = true;
            others.files.requests.clear();
            m_what += " addItems, kept";
            const LateAnswer answer = sendLate(OrvoPlayListPlAddItemsPath(), args);
            others.files.keepPrepareRequests = false;
            EXPECT_FALSE(answer->answered);
            ASSERT_EQ(1, others.files.requests.size());
            m_pending.append({answer, others.files.requests.takeFirst().reply(), id.number,
                              birthOf(id.number), own, fromFiles, mode.number});
            return;
        }
        const int added = m_model.addItems(id.number, own + fromFiles, mode.number);
        expect(added > 0, OrvoPlayListPlAddItemsPath(), args);
        expectStart(id.number, added, mode.number);
        others.files.requests.clear();
    }

    void answerPending() {
        if (m_pending.isEmpty())
            return;
        Pending pending = m_pending.takeAt(below(m_pending.size()));
        const bool fails = oneIn(4);
        m_what += " answered late";
        const QStringList titles = fails ? pending.before : pending.before + pending.awaited;
        const int added = birthOf(pending.plid) == pending.birth
                              ? m_model.addItems(pending.plid, titles, pending.mode)
                              : 0;
        if (fails)
            pending.source.setError(CMError(TrString(QString("no"))));
        else
            pending.source.setValue(itemHashes(pending.awaited));
        ASSERT_TRUE(pending.answer->answered);
        EXPECT_EQ(added > 0, !pending.answer->failed) << qPrintable(pending.answer->message());
        expectStart(pending.plid, added, pending.mode);
    }

    void merge() {
        const Id from = playListId();
        const Id plid = playListId();
        const Id mode = addMode();
        QVariantHash args{{"plid", plid.sent}, {"fromPlid", from.sent}};
        insertMode(args, mode);
        const int added = m_model.merge(from.number, plid.number, mode.number);
        expect(added > 0, OrvoPlayListPlAddItemsPath(), args);
        expectStart(plid.number, added, mode.number);
    }

    void prepare() {
        const QStringList entries = query("SELECT uid || ' ' || title FROM items");
        QVariantList paths;
        QStringList expected;
        for (int count = below(12); count > 0; --count) {
            const bool known = !entries.isEmpty() && !oneIn(6);
            const QStringList entry =
                known ? entries.at(below(entries.size())).split(' ') : QStringList{"88888", ""};
            paths.append("playlists:item/" + entry.at(0));
            expected.append(entry.at(1));
        }
        m_what += " prepareItems";
        QStringList got;
        const QVariantList items = send(OrvoPlayListPlPrepareItemsPath(), paths).value.toList();
        for (const QVariant& item : items)
            got.append(item.toHash().value("title").toString());
        EXPECT_EQ(expected, got);
    }

    // The module ends and starts anew, perhaps after something was played and with another limit.
    void startAnew() {
        m_what += " restart";
        if (oneIn(3)) {
            m_model.limit = pick({0, 12, 25});
            setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), m_model.limit);
        }
        const int plid = pick(m_model.playLists.keys().toVector());
        const int lastPlayed = below(sizeOf(plid) + 3) - 1;
        m_model.playLists[plid].lastPlayed = lastPlayed;
        restartAfter(QString("UPDATE playlists SET lastPlayedIndex = %1 WHERE uid = %2")
                         .arg(lastPlayed)
                         .arg(plid));
        m_model.restart();
        for (const Pending& pending : qAsConst(m_pending))
            EXPECT_TRUE(pending.answer->failed) << "what was pending at the end is answered";
        m_pending.clear();
    }

    void compare() {
        EXPECT_EQ(m_model.lines(), PropertyModel::linesOf(*this));
        expectInvariants();
    }

    // What user interfaces see is what is stored.
    void compareListings() {
        for (auto pl = m_model.playLists.cbegin(); pl != m_model.playLists.cend(); ++pl)
            EXPECT_EQ(pl->titles, titles(pl.key()));
    }

    Random m_random;
    PropertyModel m_model;
    FakeModules others;
    QList<Pending> m_pending;
    QString m_what;
    int m_count = 0;
};

TEST(CommandPropertyTest, randomSequencesLeaveWhatTheModelHolds) {
    constexpr int steps = 60;
    const unsigned first = Random::firstSeed();
    const int rounds = Random::rounds(100);
    for (int i = 0; i < rounds && !HasFailure(); ++i) {
        const unsigned seed = first + unsigned(i);
        Sequence(seed).run(steps);
        if (HasFailure())
            std::printf("run it again with ORVO_SEED=%u ORVO_ROUNDS=1\n", seed);
    }
}

} // namespace
