#include "TrackTable.h"

#include "ClockText.h"

TrackTable::TrackTable()
    : m_table({QStringLiteral(">POS"), QStringLiteral("TITLE"), QStringLiteral("ARTIST"),
               QStringLiteral("ALBUM"), QStringLiteral(">TIME")}) {}

const QStringList& TrackTable::roles() {
    static const QStringList names = {QStringLiteral("title"), QStringLiteral("id"),
                                      QStringLiteral("path"), QStringLiteral("mediaData")};
    return names;
}

void TrackTable::add(const QJsonObject& row, int sequenceNumber) {
    const QJsonObject meta = row.value(QStringLiteral("mediaData"))
                                 .toObject()
                                 .value(QStringLiteral("metaData"))
                                 .toObject();
    const QString title = row.value(QStringLiteral("title")).toString();
    const QString artist = meta.value(QStringLiteral("artist")).toString();
    const QString album = meta.value(QStringLiteral("album")).toString();
    const double duration = meta.value(QStringLiteral("duration")).toDouble();
    m_tracks.append(QJsonObject{{QStringLiteral("position"), sequenceNumber + 1},
                                {QStringLiteral("sequenceNumber"), sequenceNumber},
                                {QStringLiteral("id"), row.value(QStringLiteral("id"))},
                                {QStringLiteral("title"), row.value(QStringLiteral("title"))},
                                {QStringLiteral("artist"), artist},
                                {QStringLiteral("album"), album},
                                {QStringLiteral("duration"), duration},
                                {QStringLiteral("path"), row.value(QStringLiteral("path"))}});
    m_table.addRow({QString::number(sequenceNumber + 1), title, artist, album,
                    ClockText::ofDuration(qint64(duration))});
}

QString TrackTable::plural(int count) {
    return count == 1 ? QStringLiteral("1 track") : QStringLiteral("%1 tracks").arg(count);
}
