#include "PlayListLimits.h"

#include "OrvoHash.h"

namespace {

struct LimitRow {
    const char* key;
    qint64 PlayListLimits::*limit;
};
constexpr LimitRow LimitRows[] = {
    {"playlists/maxItemBytes", &PlayListLimits::maxItemBytes},
    {"playlists/maxAdditionBytes", &PlayListLimits::maxAdditionBytes},
    {"playlists/maxNameBytes", &PlayListLimits::maxNameBytes},
};

} // namespace

PlayListLimits PlayListLimits::from(const QHash<QString, QVariant>& config) {
    PlayListLimits limits;
    for (const LimitRow& row : LimitRows) {
        const qint64 number = OrvoHash::toInt64(config.value(QString::fromLatin1(row.key)), 0);
        if (number > 0)
            limits.*row.limit = number;
    }
    return limits;
}
