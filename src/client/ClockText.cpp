#include "ClockText.h"

#include <limits>

#include <QStringList>

namespace {
constexpr int MsPerSecond = 1000;
constexpr int Sixty = 60;
constexpr int SecondsPerHour = 3600;

QString twoDigits(qint64 number) {
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}
} // namespace

QString ClockText::ofTime(qint64 milliseconds) {
    const qint64 seconds = (milliseconds + MsPerSecond / 2) / MsPerSecond;
    const QString minutesAndSeconds = twoDigits(seconds % Sixty);
    if (seconds < SecondsPerHour)
        return QStringLiteral("%1:%2").arg(seconds / Sixty).arg(minutesAndSeconds);
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / SecondsPerHour)
        .arg(twoDigits(seconds / Sixty % Sixty), minutesAndSeconds);
}

QString ClockText::ofDuration(qint64 milliseconds) {
    return milliseconds > 0 ? ofTime(milliseconds) : QString();
}

std::optional<int> ClockText::toMilliseconds(const QString& text) {
    constexpr int MaxParts = 3;
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() > MaxParts)
        return {};
    qint64 seconds = 0;
    for (int i = 0; i < parts.size(); ++i) {
        bool isNumber = false;
        const uint part = parts.at(i).toUInt(&isNumber);
        if (!isNumber || (i > 0 && part >= Sixty))
            return {};
        seconds = seconds * Sixty + part;
    }
    if (seconds > std::numeric_limits<int>::max() / MsPerSecond)
        return {};
    return int(seconds) * MsPerSecond;
}
