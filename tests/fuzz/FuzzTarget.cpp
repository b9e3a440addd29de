#include "FuzzTarget.h"

#include <cstdio>
#include <cstdlib>

const QVector<FuzzTarget>& FuzzTarget::all() {
    static const QVector<FuzzTarget> rows = {
        {"gateway", Fuzz::gateway}, {"path", Fuzz::path},         {"roles", Fuzz::roles},
        {"numbers", Fuzz::numbers}, {"commands", Fuzz::commands}, {"lists", Fuzz::lists},
    };
    return rows;
}

void Fuzz::require(bool holds, const QString& reason) {
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: %s\n", reason.left(2000).toUtf8().constData());
    std::abort();
}
