#pragma once

#include <optional>

#include <QString>

// Times as people read and write them.
namespace ClockText {

// 65000 ms: "1:05"; hours from 60 minutes on.
QString ofTime(qint64 milliseconds);
// The same, empty for a duration that is not known (0).
QString ofDuration(qint64 milliseconds);
// "95", "1:35" and "0:01:35" in milliseconds; nothing when it is no time.
std::optional<int> toMilliseconds(const QString& text);

} // namespace ClockText
