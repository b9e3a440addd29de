#include "PathText.h"
#include "TrackTable.h"
#include "Verbs.h"

namespace {

// A row names its playlist in the path of its menu.
int playlistOf(const QJsonObject& row) {
    const QString menu =
        row.value(QStringLiteral("context")).toObject().value(QStringLiteral("path")).toString();
    return PathText::parameter(menu, QStringLiteral("plid")).toInt();
}

int sequenceNumberOf(const QJsonObject& row) {
    return row.value(QStringLiteral("value")).toObject().value(QStringLiteral("i32")).toInt();
}

} // namespace

void NextUpVerb::nextUp(VerbContext& context) {
    const int last = context.arguments.number(QStringLiteral("count"), Device::LastRow, 1) - 1;
    const RowsAnswer answer = context.device.rows(
        context.device.path(QStringLiteral("OrvoPlayListUpNextPath")),
        TrackTable::roles() + QStringList{QStringLiteral("value"), QStringLiteral("context")}, 0,
        last);
    TrackTable table;
    for (const QJsonObject& row : answer.rows)
        table.add(row, sequenceNumberOf(row));
    Named playlist;
    if (!answer.rows.isEmpty())
        playlist =
            context.lists.playlist(QStringLiteral("#%1").arg(playlistOf(answer.rows.first())));
    if (context.output.isJson()) {
        QJsonObject result{{QStringLiteral("tracksCount"), answer.count},
                           {QStringLiteral("tracks"), table.json()}};
        if (!table.isEmpty()) {
            result.insert(QStringLiteral("id"), playlist.id);
            result.insert(QStringLiteral("name"), playlist.name);
        }
        context.output.json(result);
        return;
    }
    if (table.isEmpty()) {
        context.output.line(QStringLiteral("nothing comes next"));
        return;
    }
    context.output.line(
        QStringLiteral("%1: %2 to come").arg(playlist.label(), TrackTable::plural(answer.count)));
    context.output.text(table.text());
}
