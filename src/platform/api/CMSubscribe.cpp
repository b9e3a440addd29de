#include "CMSubscribe.h"

void CMSubscribe::changedStartingWith(const CMPath& path, const QString& kind, int count,
                                      Revision revision) {
    Q_EMIT changed({CMChange::Kind::StartingWith, path, {kind}, -1, count, {}, {}, revision});
}

void CMSubscribe::rowsChanged(const CMPath& path, const QString& kind, int count) {
    Q_EMIT changed({CMChange::Kind::Rows, path, {kind}, -1, count, {}, {}, {}});
}

void CMSubscribe::rowsChanged(const CMPath& path, const QStringList& changes, int start, int count,
                              Revision revision) {
    Q_EMIT changed({CMChange::Kind::Rows, path, changes, start, count, {}, {}, revision});
}

void CMSubscribe::valueChanged(const CMPath& path, const OrvoValue& newValue,
                               const OrvoValue& oldValue) {
    Q_EMIT changed({CMChange::Kind::Value, path, {}, -1, -1, newValue, oldValue, {}});
}
