#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include "TextTable.h"

// Tracks of a playlist as people and programs get them: position, title, artist, album and length.
class TrackTable {
public:
    TrackTable();

    // What must be asked for.
    static const QStringList& roles();

    void add(const QJsonObject& row, int sequenceNumber);
    bool isEmpty() const { return m_tracks.isEmpty(); }
    const QJsonArray& json() const { return m_tracks; }
    QString text() const { return m_table.text(); }

    // "1 track", "2 tracks"
    static QString plural(int count);

private:
    TextTable m_table;
    QJsonArray m_tracks;
};
