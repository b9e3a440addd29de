#include "PlayerStatus.h"

#include "ClockText.h"
#include "Device.h"
#include "SafeText.h"

namespace {

constexpr int BarCells = 40;

QJsonObject at(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toObject();
}

QString textAt(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString();
}

qint64 millisecondsOf(const QJsonObject& value) {
    return qint64(value.value(QStringLiteral("i64")).toDouble());
}

} // namespace

const QStringList& PlayerStatus::valueFunctions() {
    static const QStringList functions = {
        QStringLiteral("OrvoPlayerStatePath"),     QStringLiteral("OrvoPlayerDataPath"),
        QStringLiteral("OrvoPlayerPositionPath"),  QStringLiteral("OrvoPlayerDurationPath"),
        QStringLiteral("OrvoPlayerPlayModePath"),  QStringLiteral("OrvoPlayerVolumePath"),
        QStringLiteral("OrvoPlayerNextMediaPath"),
    };
    return functions;
}

PlayerStatus PlayerStatus::read(Device& device) {
    const auto value = [&device](const char* function) {
        return device.value(device.path(QString::fromLatin1(function))).toObject();
    };
    PlayerStatus status;
    status.state = textAt(value("OrvoPlayerStatePath"), "string");
    status.mode = textAt(value("OrvoPlayerPlayModePath"), "string");
    status.volume = value("OrvoPlayerVolumePath").value(QStringLiteral("i32")).toInt();
    status.position = millisecondsOf(value("OrvoPlayerPositionPath"));
    status.duration = millisecondsOf(value("OrvoPlayerDurationPath"));
    status.nextTitle = textAt(value("OrvoPlayerNextMediaPath"), "title");

    const QJsonObject data = value("OrvoPlayerDataPath");
    const QJsonObject track = at(data, "trackRoles");
    const QJsonObject metaData = at(at(track, "mediaData"), "metaData");
    status.title = textAt(track, "title");
    status.artist = textAt(metaData, "artist");
    status.album = textAt(metaData, "album");
    status.error = textAt(at(data, "streamerError"), "message");

    const QString listPath = textAt(at(data, "mediaRoles"), "path");
    const QJsonValue number = at(track, "value").value(QStringLiteral("i32"));
    if (!listPath.isEmpty() && number.isDouble()) {
        // One row is enough: the answer carries the list's title and size.
        const DeviceRows rows = device.rows(listPath, {QStringLiteral("title")}, 0, 0);
        status.list = rows.title;
        status.listSize = rows.count;
        status.place = number.toInt() + 1;
    }
    return status;
}

QString PlayerStatus::bar(qint64 position, qint64 duration, int cells) {
    const qint64 within = qBound<qint64>(0, position, duration);
    const int done = duration > 0 ? int(within * (cells - 1) / duration) : 0;
    return QLatin1Char('[') + QString(done, QLatin1Char('=')) + QLatin1Char('>') +
           QString(cells - 1 - done, QLatin1Char('-')) + QLatin1Char(']');
}

QString PlayerStatus::text() const {
    QStringList lines;
    if (title.isEmpty()) {
        lines.append(state);
    } else {
        QString line = state + QStringLiteral(": ") + title;
        if (!artist.isEmpty())
            line += QStringLiteral(" - ") + artist;
        if (!album.isEmpty())
            line += QStringLiteral(" (") + album + QLatin1Char(')');
        lines.append(line);
        lines.append(QStringLiteral("  %1 %2 %3")
                         .arg(ClockText::ofTime(position), bar(position, duration, BarCells),
                              ClockText::ofTime(duration)));
    }
    if (!error.isEmpty())
        lines.append(QStringLiteral("  error: ") + error);
    if (place > 0)
        lines.append(QStringLiteral("  %1, track %2 of %3").arg(list).arg(place).arg(listSize));
    lines.append(QStringLiteral("  mode: %1   volume: %2").arg(mode).arg(volume));
    if (!title.isEmpty())
        lines.append(QStringLiteral("  next: ") +
                     (nextTitle.isEmpty() ? QStringLiteral("nothing announced") : nextTitle));
    for (QString& line : lines)
        line = SafeText::forTerminal(line);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QJsonObject PlayerStatus::json() const {
    return {{QStringLiteral("state"), state},       {QStringLiteral("title"), title},
            {QStringLiteral("artist"), artist},     {QStringLiteral("album"), album},
            {QStringLiteral("error"), error},       {QStringLiteral("position"), position},
            {QStringLiteral("duration"), duration}, {QStringLiteral("list"), list},
            {QStringLiteral("place"), place},       {QStringLiteral("tracksCount"), listSize},
            {QStringLiteral("mode"), mode},         {QStringLiteral("volume"), volume},
            {QStringLiteral("next"), nextTitle}};
}
