#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

// Lets events happen until `condition` holds; false when it did not within the time.
template <typename Condition>
bool waitUntil(Condition condition, int timeoutMs = 10000) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::msleep(1);
    }
    return true;
}

// Lets events happen for a while.
inline void waitFor(int ms) {
    waitUntil([] { return false; }, ms);
}
