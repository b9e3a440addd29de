#include "CommandSequence.h"

#include <algorithm>

#include "CMRootWorker.h"
#include "FuzzTarget.h"
#include "OrvoPlayListPaths.h"

namespace {

QStringList rowTitles(const CMPath& path, int* count) {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(
        CMGetRowsRequest(path, 0, CMGetRowsRequest::LastRow, {OrvoRoles::Title()}, reply));
    Fuzz::require(reply.isFinished() && !reply.isError(), "no rows at " + path.toString());
    QStringList titles;
    const QVariantList rows = reply.value().rows();
    for (const QVariant& row : rows)
        titles.append(TrString::fromVariant(row.toList().value(0)).toString());
    *count = reply.value().rowsCount();
    return titles;
}

} // namespace

int CommandSequence::limitOf(char byte) {
    constexpr int limits[] = {0, 5, 12, 25};
    return limits[(uchar(byte) - '0') & 3];
}

const QVector<CommandSequence::Command>& CommandSequence::commands() {
    static const QVector<Command> rows = {
        {'c', &CommandSequence::create},
        {'n', &CommandSequence::rename},
        {'s', &CommandSequence::shuffle},
        {'t', &CommandSequence::repeat},
        {'d', &CommandSequence::remove},
        {'e', &CommandSequence::clear},
        {'r', &CommandSequence::removeItems},
        {'m', &CommandSequence::moveItems},
        {'a', &CommandSequence::addItems},
        {'p', &CommandSequence::addPaths},
        {'g', &CommandSequence::merge},
        {'y', &CommandSequence::play},
        {'C', &CommandSequence::createCollection},
        {'D', &CommandSequence::removeCollection},
        {'A', &CommandSequence::addMember},
        {'R', &CommandSequence::removeMember},
        {'S', &CommandSequence::restart},
        {'V', &CommandSequence::vacuum},
    };
    return rows;
}

CommandSequence::CommandSequence(int itemsLimit) : m_world(World::instance()), m_model(itemsLimit) {
    m_world.setLimits(World::Limits::Default);
    m_world.reset(itemsLimit);
    m_model.createPlayList(QStringLiteral("Party"));
    m_model.createPlayList(QStringLiteral("Quiet"));
    m_model.limit = 0;
    m_model.addItems(1, {"a", "b", "c"}, PropertyModel::Append);
    m_model.limit = itemsLimit;
    m_model.createCollection(QStringLiteral("Box"));
    m_model.addMember(1, 2);
}

void CommandSequence::run(char letter, const Numbers& numbers) {
    for (const Command& command : commands()) {
        if (command.letter != letter)
            continue;
        m_done += QStringLiteral(" %1 %2,%3,%4")
                      .arg(QLatin1Char(letter))
                      .arg(numbers[0])
                      .arg(numbers[1])
                      .arg(numbers[2]);
        (this->*command.run)(numbers);
        compare(false);
    }
}

void CommandSequence::finish() {
    compareRows();
    compare(true);
    restart({-1, 0, 0});
    compare(false);
    compareRows();
}

QString CommandSequence::name(int number) {
    static const QStringList names = {QString(), "Party", "%1 %2", "ä ö",
                                      "'); DROP TABLE items;--"};
    return names.value(number, QString(std::clamp(number, 1, 200), QLatin1Char('n')));
}

QList<int> CommandSequence::positions(int first, int count) {
    QList<int> result;
    for (int i = 0; i < (count & 7); ++i)
        result.append(count & 8 ? first + 2 * i : first + (i % 2 == 0 ? i : -i));
    if (count & 16)
        std::reverse(result.begin(), result.end());
    return result;
}

QVariantList CommandSequence::asList(const QList<int>& numbers) {
    QVariantList list;
    for (int number : numbers)
        list.append(number);
    return list;
}

QStringList CommandSequence::freshTitles(int count) {
    QStringList titles;
    for (int i = 0; i < (count & 15); ++i)
        titles.append('t' + QString::number(++m_titles));
    return titles;
}

void CommandSequence::expect(bool success, const CMPath& path, const QVariantHash& args) {
    const CMReply<QVariant> reply;
    CMRoot()->setDataRequest(CMSetDataRequest(path, args, reply));
    m_world.settle();
    Fuzz::require(reply.isFinished(), "no answer:" + m_done);
    Fuzz::require(reply.isError() != success,
                  (success ? "refused, against the model:" : "done, against the model:") + m_done);
}

void CommandSequence::create(const Numbers& numbers) {
    const QString text = name(numbers[0]);
    expect(m_model.createPlayList(text).has_value(), OrvoPlayListPlCreatePath(), {{"name", text}});
}

void CommandSequence::rename(const Numbers& numbers) {
    const QString text = name(numbers[1]);
    expect(m_model.renamePlayList(numbers[0], text), OrvoPlayListPlSetNamePath(),
           {{"plid", numbers[0]}, {"name", text}});
}

void CommandSequence::shuffle(const Numbers& numbers) {
    expect(m_model.setShuffle(numbers[0], numbers[1]), OrvoPlayListPlSetShufflePath(),
           {{"plid", numbers[0]}, {"mode", numbers[1]}});
}

void CommandSequence::repeat(const Numbers& numbers) {
    expect(m_model.setRepeat(numbers[0], numbers[1]), OrvoPlayListPlSetRepeatPath(),
           {{"plid", numbers[0]}, {"mode", numbers[1]}});
}

void CommandSequence::remove(const Numbers& numbers) {
    expect(m_model.deletePlayList(numbers[0]), OrvoPlayListPlDeletePath(), {{"plid", numbers[0]}});
}

void CommandSequence::clear(const Numbers& numbers) {
    expect(m_model.clear(numbers[0]), OrvoPlayListPlClearPath(), {{"plid", numbers[0]}});
}

void CommandSequence::removeItems(const Numbers& numbers) {
    const QList<int> items = positions(numbers[1], numbers[2]);
    expect(m_model.removeItems(numbers[0], items), OrvoPlayListPlRemoveItemsPath(),
           {{"plid", numbers[0]}, {"items", asList(items)}});
}

// The last number is both how many and where to: its upper bits are the target.
void CommandSequence::moveItems(const Numbers& numbers) {
    const QList<int> items = positions(numbers[1], numbers[2] & 31);
    const int to = (numbers[2] >> 5) + (numbers[1] & 3);
    expect(m_model.moveItems(numbers[0], items, to), OrvoPlayListPlMoveItemspath(),
           {{"plid", numbers[0]}, {"items", asList(items)}, {"to", to}});
}

void CommandSequence::addItems(const Numbers& numbers) {
    const QStringList titles = freshTitles(numbers[1]);
    QVariantList items;
    for (const QString& title : titles)
        items.append(World::item(title));
    expect(m_model.addItems(numbers[0], titles, numbers[2]) > 0,
           OrvoPlayListPlAddExternalItemsPath(),
           {{"plid", numbers[0]}, {"items", items}, {"mode", numbers[2]}});
}

// From a source that answers late.
void CommandSequence::addPaths(const Numbers& numbers) {
    const QStringList titles = freshTitles(numbers[1]);
    if (titles.isEmpty())
        return;
    QVariantList paths;
    QStringList prepared;
    for (const QString& title : titles) {
        paths.append("attic:" + title);
        prepared.append("attic:" + title);
    }
    expect(m_model.addItems(numbers[0], prepared, numbers[2]) > 0, OrvoPlayListPlAddItemsPath(),
           {{"plid", numbers[0]}, {"items", paths}, {"mode", numbers[2]}});
}

void CommandSequence::merge(const Numbers& numbers) {
    expect(m_model.merge(numbers[0], numbers[1], numbers[2]) > 0, OrvoPlayListPlAddItemsPath(),
           {{"plid", numbers[1]}, {"fromPlid", numbers[0]}, {"mode", numbers[2]}});
}

void CommandSequence::play(const Numbers& numbers) {
    expect(m_model.canPlay(numbers[0]), OrvoPlayListPlPlayPath(), {{"plid", numbers[0]}});
}

void CommandSequence::createCollection(const Numbers& numbers) {
    const QString text = name(numbers[0]);
    expect(m_model.createCollection(text).has_value(), OrvoPlayListClCreatePath(),
           {{"name", text}});
}

void CommandSequence::removeCollection(const Numbers& numbers) {
    expect(m_model.deleteCollection(numbers[0]), OrvoPlayListClDeletePath(),
           {{"clid", numbers[0]}});
}

void CommandSequence::addMember(const Numbers& numbers) {
    expect(m_model.addMember(numbers[0], numbers[1]), OrvoPlayListClAddItemPath(),
           {{"clid", numbers[0]}, {"plid", numbers[1]}});
}

void CommandSequence::removeMember(const Numbers& numbers) {
    expect(m_model.removeMember(numbers[0], numbers[1]), OrvoPlayListClRemoveItemPath(),
           {{"clid", numbers[0]}, {"plid", numbers[1]}});
}

// With something played before, unless there is no such playlist.
void CommandSequence::restart(const Numbers& numbers) {
    if (m_model.playLists.contains(numbers[0])) {
        m_model.playLists[numbers[0]].lastPlayed = numbers[1];
        m_world.run(QStringLiteral("UPDATE playlists SET lastPlayedIndex = %1 WHERE uid = %2")
                        .arg(numbers[1])
                        .arg(numbers[0]));
    }
    m_model.restart();
    m_world.restart();
}

// The power manager's quiet moment, at which the store is packed when it is due.
void CommandSequence::vacuum(const Numbers&) {
    for (int target : {1, 2}) {
        OrvoPowerManagerTarget value;
        value.setTarget(target);
        CMRoot()->setValue(OrvoPowerManagerTargetPath(), value.toVariant(), CMVoidReply());
    }
}

void CommandSequence::compare(bool thorough) {
    m_world.requireInvariants(thorough);
    const QStringList expected = m_model.lines();
    const QStringList stored = PropertyModel::linesOf(m_world);
    Fuzz::require(stored == expected, "after" + m_done + "\nthe store has " + stored.join('\n') +
                                          "\nand should have " + expected.join('\n'));
}

// What user interfaces see: from memory as far as the device keeps it there.
void CommandSequence::compareRows() {
    for (auto pl = m_model.playLists.cbegin(); pl != m_model.playLists.cend(); ++pl) {
        int count = -1;
        const CMPath path = pl.key() == 0
                                ? OrvoPlayListPqGetItemsPath()
                                : OrvoPlayListPlGetItemsPath() + QString::number(pl.key());
        const QStringList shown = rowTitles(path, &count);
        Fuzz::require(shown == pl->titles && count == pl->titles.size(),
                      "after" + m_done + "\nshown is " + shown.join(' ') + "\nand should be " +
                          pl->titles.join(' '));
    }
    int count = -1;
    const QStringList lists = rowTitles(OrvoPlayListPlGetlistPath(), &count);
    for (auto pl = m_model.playLists.cbegin(); pl != m_model.playLists.cend(); ++pl)
        Fuzz::require(pl.key() == 0 || lists.contains(pl->name), "not listed: " + pl->name);
}
