#pragma once

#include <optional>

#include <QMetaType>
#include <QObject>
#include <QStringList>

#include "CMPath.h"
#include "OrvoValue.h"

// One change that user interfaces are told about.
struct CMChange {
    enum class Kind {
        Rows,         // rows of the list at `path`
        StartingWith, // every list at or below `path`
        Value         // the value at `path`
    };
    Kind kind = Kind::Rows;
    CMPath path;
    // Rows and StartingWith: "reset" (read again), "close" (the list is gone), "+4" (a row was
    // inserted at 4, the markers in ascending order).
    QStringList changes;
    int start = -1;
    int count = -1;
    OrvoValue newValue;
    OrvoValue oldValue;
    // Rows and StartingWith: the revision of the list at `path` that the change leads to, where the
    // list has such.
    std::optional<qint64> revision;
};
Q_DECLARE_METATYPE(CMChange)

// The event emitter of a worker. Belongs to its worker, lives on its thread, never fails.
class ORVO_API_EXPORT CMSubscribe : public QObject {
    Q_OBJECT
public:
    explicit CMSubscribe(QObject* parent = nullptr) : QObject(parent) {}

    static QString RowsChangeReset() { return QStringLiteral("reset"); }
    static QString RowsChangeClose() { return QStringLiteral("close"); }
    // The marker of one row inserted at `row`.
    static QString RowInserted(int row) { return QStringLiteral("+%1").arg(row); }

    using Revision = std::optional<qint64>;
    void changedStartingWith(const CMPath& path, const QString& kind, int count,
                             Revision revision = {});
    void rowsChanged(const CMPath& path, const QString& kind, int count);
    void rowsChanged(const CMPath& path, const QStringList& changes, int start, int count,
                     Revision revision = {});
    void valueChanged(const CMPath& path, const OrvoValue& newValue, const OrvoValue& oldValue);

Q_SIGNALS:
    void changed(const CMChange& change);
};
