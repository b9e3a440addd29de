#include "PlayerStatus.h"

#include "Awaited.h"
#include "ClockText.h"
#include "Device.h"
#include "PlayerModel.h"
#include "SafeText.h"

namespace {

constexpr int BarCells = 40;

} // namespace

PlayerStatus PlayerStatus::read(Device& device) {
    for (const QString& function : PlayerModel::functions())
        device.path(function); // a failure where the device has no such path
    PlayerModel player(device.paths(), device.api());
    const auto answer = awaited<ApiAnswer>([&](const auto& done) { player.refresh(true, done); });
    device.check(answer.error, answer.status);

    PlayerStatus status;
    status.state = player.state();
    status.mode = player.mode();
    status.volume = player.volume();
    status.position = player.position();
    status.duration = player.duration();
    status.nextTitle = player.nextTitle();
    const QJsonObject& data = player.data();
    const BrowseRow track(data.value(QStringLiteral("trackRoles")).toObject());
    status.title = track.title();
    status.artist = track.artist();
    status.album = track.album();
    status.error = data.value(QStringLiteral("streamerError"))
                       .toObject()
                       .value(QStringLiteral("message"))
                       .toString();
    const QString listPath = BrowseRow(player.container()).path();
    if (!listPath.isEmpty() && track.position() >= 0) {
        // One row is enough: the answer carries the list's title and size.
        const RowsAnswer rows = device.rows(listPath, {QStringLiteral("title")}, 0, 0);
        status.list = rows.title;
        status.listSize = rows.count;
        status.place = track.position() + 1;
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
