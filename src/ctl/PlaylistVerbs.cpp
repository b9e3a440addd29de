#include <QJsonArray>

#include "ClientFailure.h"
#include "Positions.h"
#include "TextTable.h"
#include "TrackTable.h"
#include "Verbs.h"

namespace {

const QString Plid = QStringLiteral("plid");
const QString Items = QStringLiteral("items");
const QString Mode = QStringLiteral("mode");
constexpr int RepeatAll = 2;

QJsonObject record(const Named& playlist) {
    return {{Plid, playlist.id}};
}

bool onOrOff(const QString& word) {
    if (word != QLatin1String("on") && word != QLatin1String("off"))
        throw ClientFailure::usage(QStringLiteral("\"on\" or \"off\", not \"%1\"").arg(word));
    return word == QLatin1String("on");
}

void setMode(VerbContext& context, const char* function, int onMode, const char* word) {
    const bool on = onOrOff(context.arguments.at(1));
    const Named playlist = context.playlist();
    QJsonObject request = record(playlist);
    request.insert(Mode, on ? onMode : 0);
    context.run(QString::fromLatin1(function), request,
                QStringLiteral("%1 is %2 for %3")
                    .arg(QLatin1String(word), context.arguments.at(1), playlist.label()));
}

} // namespace

void PlaylistVerbs::list(VerbContext& context) {
    TextTable table({QStringLiteral(">ID"), QStringLiteral("NAME"), QStringLiteral(">TRACKS")});
    QJsonArray array;
    for (const Named& playlist : context.lists.playlists()) {
        const int tracks = context.device.rowsCount(context.lists.itemsPath(playlist));
        table.addRow(
            {QStringLiteral("#%1").arg(playlist.id), playlist.name, QString::number(tracks)});
        array.append(QJsonObject{{QStringLiteral("id"), playlist.id},
                                 {QStringLiteral("name"), playlist.name},
                                 {QStringLiteral("tracks"), tracks}});
    }
    if (context.output.isJson())
        context.output.json(array);
    else
        context.output.text(table.text());
}

void PlaylistVerbs::create(VerbContext& context) {
    context.create(QStringLiteral("OrvoPlayListPlCreatePath"));
}

void PlaylistVerbs::rename(VerbContext& context) {
    const QString name = Names::visible(context.arguments.at(1));
    const Named playlist = context.playlist();
    QJsonObject request = record(playlist);
    request.insert(QStringLiteral("name"), name);
    context.run(QStringLiteral("OrvoPlayListPlSetNamePath"), request,
                QStringLiteral("%1 is called %2 now").arg(playlist.label(), name));
}

void PlaylistVerbs::remove(VerbContext& context) {
    const Named playlist = context.playlist();
    context.run(QStringLiteral("OrvoPlayListPlDeletePath"), record(playlist),
                QStringLiteral("deleted %1").arg(playlist.label()));
}

void PlaylistVerbs::show(VerbContext& context) {
    const Arguments& arguments = context.arguments;
    const int from = arguments.number(QStringLiteral("from"), 1, 1) - 1;
    const int to = arguments.number(QStringLiteral("to"), Device::LastRow, 1) - 1;
    if (to < from)
        throw ClientFailure::usage(QStringLiteral("--to lies before --from"));
    const Named playlist = context.playlist();
    if (playlist.name.isEmpty())
        throw ClientFailure::refused(
            QStringLiteral("there is no playlist %1").arg(playlist.label()));
    const RowsAnswer answer =
        context.device.rows(context.lists.itemsPath(playlist), TrackTable::roles(), from, to);
    TrackTable table;
    for (int i = 0; i < answer.rows.size(); ++i)
        table.add(answer.rows.at(i), from + i);
    if (context.output.isJson()) {
        context.output.json(QJsonObject{{QStringLiteral("id"), playlist.id},
                                        {QStringLiteral("name"), playlist.name},
                                        {QStringLiteral("tracksCount"), answer.count},
                                        {QStringLiteral("tracks"), table.json()}});
        return;
    }
    context.output.line(
        QStringLiteral("%1: %2").arg(playlist.label(), TrackTable::plural(answer.count)));
    if (!table.isEmpty())
        context.output.text(table.text());
}

void PlaylistVerbs::removeItems(VerbContext& context) {
    const QList<int> positions = Positions::parse(context.arguments.positional().mid(1));
    const Named playlist = context.playlist();
    QJsonObject request = record(playlist);
    request.insert(Items, Positions::json(positions));
    context.run(QStringLiteral("OrvoPlayListPlRemoveItemsPath"), request,
                QStringLiteral("removed %1 from %2")
                    .arg(TrackTable::plural(positions.size()), playlist.label()));
}

void PlaylistVerbs::moveItems(VerbContext& context) {
    if (!context.arguments.has(QStringLiteral("to")))
        throw ClientFailure::usage(QStringLiteral("--to is missing"));
    const int to = Positions::parseOne(context.arguments.value(QStringLiteral("to")));
    const QList<int> positions = Positions::parse(context.arguments.positional().mid(1));
    const Named playlist = context.playlist();
    QJsonObject request = record(playlist);
    request.insert(Items, Positions::json(positions));
    request.insert(QStringLiteral("to"), to);
    context.run(QStringLiteral("OrvoPlayListPlMoveItemspath"), request,
                QStringLiteral("moved %1 in %2")
                    .arg(TrackTable::plural(positions.size()), playlist.label()));
}

void PlaylistVerbs::clear(VerbContext& context) {
    const Named playlist = context.playlist();
    context.run(QStringLiteral("OrvoPlayListPlClearPath"), record(playlist),
                QStringLiteral("cleared %1").arg(playlist.label()));
}

void PlaylistVerbs::merge(VerbContext& context) {
    const Named source = context.playlist(0);
    const Named target = context.playlist(1);
    // The device would double it.
    if (source.id == target.id)
        throw ClientFailure::usage(
            QStringLiteral("%1 cannot be merged into itself").arg(source.label()));
    QJsonObject request = record(target);
    request.insert(QStringLiteral("fromPlid"), source.id);
    request.insert(Items, QJsonArray());
    context.run(QStringLiteral("OrvoPlayListPlAddItemsPath"), request,
                QStringLiteral("merged %1 into %2").arg(source.label(), target.label()));
}

void PlaylistVerbs::shuffle(VerbContext& context) {
    setMode(context, "OrvoPlayListPlSetShufflePath", 1, "shuffle");
}

void PlaylistVerbs::repeat(VerbContext& context) {
    setMode(context, "OrvoPlayListPlSetRepeatPath", RepeatAll, "repeat");
}
