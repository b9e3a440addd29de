#pragma once

#include <QJsonObject>
#include <QString>

class Device;

// What the player does, read as one picture from its values. Failures are ClientFailure.
class PlayerStatus {
public:
    static PlayerStatus read(Device& device);

    QString state;
    // Empty while nothing plays.
    QString title;
    QString artist;
    QString album;
    // What went wrong with the track, empty when nothing did.
    QString error;
    qint64 position = 0; // milliseconds
    qint64 duration = 0;
    // The list that plays and the place in it, from 1; place 0 when there is none.
    QString list;
    int place = 0;
    int listSize = 0;
    QString mode;
    int volume = 0;
    // Empty when nothing has been announced to follow.
    QString nextTitle;

    QString text() const;
    QJsonObject json() const;
    // "[=====>----]": `position` of `duration` in that many cells.
    static QString bar(qint64 position, qint64 duration, int cells);
};
