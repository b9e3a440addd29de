#include "ClientFailure.h"
#include "Positions.h"
#include "TrackOrder.h"
#include "Verbs.h"

namespace {

const QStringList SortRoles = {QStringLiteral("title"), QStringLiteral("mediaData")};

// What the verb found out holds for the list as it was read: the device refuses it for any other.
QJsonObject record(const Named& playlist, const RowsAnswer& answer) {
    return {{QStringLiteral("plid"), playlist.id}, {QStringLiteral("revision"), answer.revision}};
}

} // namespace

void OrderVerbs::sort(VerbContext& context) {
    const QString by = context.arguments.value(QStringLiteral("by"));
    const TrackOrder::Field* field = TrackOrder::field(by);
    if (!field)
        throw ClientFailure::usage(QStringLiteral("--by is one of %1").arg(TrackOrder::names()));
    const Named playlist = context.playlist();
    const RowsAnswer answer = context.device.rows(context.lists.itemsPath(playlist), SortRoles);
    if (answer.rows.isEmpty())
        throw ClientFailure::refused(
            QStringLiteral("there are no tracks in %1").arg(playlist.label()));
    QJsonObject request = record(playlist, answer);
    request.insert(QStringLiteral("order"),
                   Positions::json(TrackOrder::sorted(
                       answer.rows, *field, context.arguments.has(QStringLiteral("reverse")))));
    context.run(QStringLiteral("OrvoPlayListPlSetOrderPath"), request,
                QStringLiteral("sorted %1 by %2").arg(playlist.label(), by));
}

void OrderVerbs::dedupe(VerbContext& context) {
    const Named playlist = context.playlist();
    const RowsAnswer answer = context.device.rows(context.lists.itemsPath(playlist), SortRoles);
    const QList<int> duplicates = TrackOrder::duplicates(answer.rows);
    if (!duplicates.isEmpty()) {
        QJsonObject request = record(playlist, answer);
        request.insert(QStringLiteral("items"), Positions::json(duplicates));
        context.device.command(QStringLiteral("OrvoPlayListPlRemoveItemsPath"), request);
    }
    if (context.output.isJson())
        context.output.json(QJsonObject{{QStringLiteral("removed"), duplicates.size()}});
    else
        context.output.done(QStringLiteral("removed %1 duplicate%2 from %3")
                                .arg(duplicates.size())
                                .arg(QLatin1String(duplicates.size() == 1 ? "" : "s"))
                                .arg(playlist.label()));
}
