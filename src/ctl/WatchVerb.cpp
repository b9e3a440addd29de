#include <memory>

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QTimer>

#include "CtlFailure.h"
#include "EventParser.h"
#include "Verbs.h"

namespace {

// The device shows every 15 s that it is there.
constexpr int SilenceMs = 45000;
constexpr int RetryMs = 1000;
constexpr int Ok = 200;
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
    const QJsonObject data = QJsonDocument::fromJson(event.data).object();
    if (output.isJson())
        output.json(QJsonObject{{QStringLiteral("id"), QString::fromUtf8(event.id)},
                                {QStringLiteral("event"), QString::fromUtf8(event.type)},
                                {QStringLiteral("data"), data}});
    else
        output.line(describe(event, data));
}

// Reads one connection to its end. False when there never was one; `left` counts down to 0 at the
// last wanted event.
bool readStream(VerbContext& context, EventParser* parser, int* left, QString* reason) {
    ApiClient& client = context.device.client();
    QNetworkRequest request = client.request(QStringLiteral("/api/events"));
    request.setRawHeader("Accept", "text/event-stream");
    request.setTransferTimeout(SilenceMs);
    if (!parser->lastId().isEmpty())
        request.setRawHeader("Last-Event-ID", parser->lastId());
    parser->restart();
    const std::unique_ptr<QNetworkReply> reply(client.manager().get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        for (const DeviceEvent& event : parser->feed(reply->readAll())) {
            if (*left == 0)
                return;
            print(context.output, event);
            if (*left > 0 && --*left == 0)
                loop.quit();
        }
    });
    loop.exec();
    *reason = reply->errorString();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    reply->abort();
    return status == Ok;
}

} // namespace

void WatchVerb::watch(VerbContext& context) {
    constexpr int Endless = -1;
    int left = context.arguments.number(QStringLiteral("count"), Endless, 1);
    EventParser parser;
    QString reason;
    bool connected = readStream(context, &parser, &left, &reason);
    if (!connected)
        throw CtlFailure::refused(QStringLiteral("no events from %1: %2")
                                      .arg(context.device.client().url().toString(), reason));
    while (left != 0) {
        if (connected)
            Output::message(QStringLiteral("the connection is lost, trying again"));
        QEventLoop pause;
        QTimer::singleShot(RetryMs, &pause, &QEventLoop::quit);
        pause.exec();
        connected = readStream(context, &parser, &left, &reason);
    }
}
