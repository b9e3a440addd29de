#pragma once

#include <functional>

#include <QJsonObject>
#include <QVector>

// Part of a list, or why there is none.
struct RowsAnswer {
    QString error; // the device's own words; empty when there was none
    int status = 0;
    QString title;
    int count = 0; // of the whole list
    QJsonObject roles;
    qint64 revision = -1; // of a list of tracks, when reading began
    int resumeIndex = -1; // of a list of tracks: the one to go on with
    QVector<QJsonObject> rows;
};

// Where the rows of lists come from.
class RowReader {
public:
    using Done = std::function<void(const RowsAnswer& answer)>;

    virtual ~RowReader() = default;
    // Rows `from` to `to`, both included. Calls `done` later, never from inside; or not at all
    // when the reader is gone before.
    virtual void read(const QString& path, int from, int to, const Done& done) = 0;
};
