#pragma once

#include <QDeadlineTimer>

struct sqlite3;

// What a connection does when another process holds the file: waits a little and tries again, until
// the time is over or this process is told to end. Then the statement fails as "busy".
// Owned by the store; outlives the connection. Worker's thread.
class BusyHandler {
public:
    // A statement waits this long. Another process copies the file or looks into it: that is
    // over soon, and no reason to refuse an edit.
    static constexpr int MaxWaitMs = 300;
    static constexpr int DefaultMaxStartWaitMs = 10'000;

    // A start waits longer, for all its statements together: it needs the file and has no caller to
    // refuse.
    explicit BusyHandler(int maxStartWaitMs) : m_maxStartWaitMs(maxStartWaitMs) {}
    BusyHandler(const BusyHandler&) = delete;
    BusyHandler& operator=(const BusyHandler&) = delete;

    void attachTo(sqlite3* connection);
    void startIsOver() { m_isStarting = false; }

private:
    static int onBusy(void* handler, int tries);
    void beginToWait();
    bool wait(int tries);

    int m_maxStartWaitMs;
    bool m_isStarting = true;
    bool m_hasWaited = false;
    QDeadlineTimer m_end;
};
