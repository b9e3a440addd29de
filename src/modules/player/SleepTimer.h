#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// When playback is to pause by itself: after a time, or at the end of the track that plays.
// Owned by the transport, on its thread. Cannot fail; how long it may be is for its user to check.
class SleepTimer : public QObject {
    Q_OBJECT
public:
    static constexpr qint64 MaxMs = 24 * 3600 * 1000;

    explicit SleepTimer(QObject* parent = nullptr);

    // 0 is off.
    void start(qint64 ms);
    void startAtEndOfTrack();
    void stop() { start(0); }

    // 0 when it is off or waits for the end of the track.
    qint64 leftMs() const;
    bool isAtEndOfTrack() const { return m_atEndOfTrack; }

Q_SIGNALS:
    // It was set to something else, or is over.
    void changed();
    void elapsed();

private:
    void set(qint64 ms, bool atEndOfTrack);

    QTimer m_timer;
    QElapsedTimer m_since;
    bool m_atEndOfTrack = false;
};
