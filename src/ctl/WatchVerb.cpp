#include <QJsonArray>

#include "Verbs.h"

namespace {

// So many changes of one event are shown to people one by one.
constexpr int ShownChanges = 5;

QString describeChanges(const QJsonArray& changes) {
    QStringList shown;
    for (int i = 0; i < qMin(changes.size(), ShownChanges); ++i)
        shown.append(changes.at(i).toString());
    if (changes.size() > ShownChanges)
        shown.append(QStringLiteral("... %1 (%2 changes)")
                         .arg(changes.last().toString())
                         .arg(changes.size()));
    return shown.join(QLatin1Char(' '));
}

QString describe(const DeviceEvent& event, const QJsonObject& data) {
    const QString type = QString::fromUtf8(event.type);
    if (type == QLatin1String("resync"))
        return QStringLiteral("resync  something was missed: read everything again");
    const QString what =
        type == QLatin1String("value")
            ? QString::fromUtf8(Output::compact(data.value(QStringLiteral("value"))))
            : describeChanges(data.value(QStringLiteral("changes")).toArray());
    return QStringLiteral("%1  %2  %3")
        .arg(type, data.value(QStringLiteral("path")).toString(), what);
}

void print(const Output& output, const DeviceEvent& event) {
    const QJsonObject data = event.object();
    if (output.isJson())
        output.json(QJsonObject{{QStringLiteral("id"), QString::fromUtf8(event.id)},
                                {QStringLiteral("event"), QString::fromUtf8(event.type)},
                                {QStringLiteral("data"), data}});
    else
        output.line(describe(event, data));
}

} // namespace

void WatchVerb::watch(VerbContext& context) {
    constexpr int Endless = -1;
    int left = context.arguments.number(QStringLiteral("count"), Endless, 1);
    context.device.follow({}, [&](const DeviceEvent& event) {
        print(context.output, event);
        return left < 0 || --left > 0;
    });
}
