#include "Positions.h"

#include <algorithm>

#include "Arguments.h"
#include "ClientFailure.h"

namespace {
// A range is spelled out, so its length has a limit.
constexpr int MaxRange = 1000000;
} // namespace

int Positions::parseOne(const QString& word) {
    return Arguments::toNumber(word, 1, QStringLiteral("a position")) - 1;
}

QList<int> Positions::parse(const QStringList& words) {
    QList<int> result;
    for (const QString& word : words) {
        const int dash = word.indexOf(QLatin1Char('-'), 1);
        const int first = parseOne(dash < 0 ? word : word.left(dash));
        const int last = dash < 0 ? first : parseOne(word.mid(dash + 1));
        if (last < first || last - first > MaxRange)
            throw ClientFailure::usage(QStringLiteral("\"%1\" is no range of positions").arg(word));
        for (int i = first; i <= last; ++i)
            result.append(i);
    }
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

QJsonArray Positions::json(const QList<int>& positions) {
    QJsonArray array;
    for (const int position : positions)
        array.append(position);
    return array;
}
