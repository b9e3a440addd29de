#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QEventLoop>
#include <QThread>

// How long a test waits for what must come, also on a busy machine.
constexpr int PatienceMs = 30000;

// Lets what was left for the next turn of the event loop happen, and what is to be deleted go.
inline void turnEventLoop() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Lets events happen until `condition` holds; false when it did not within the time.
template <typename Condition>
bool waitUntil(Condition condition, int timeoutMs = PatienceMs) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
    return true;
}

// Lets events happen for a while.
inline void turnEventsFor(int ms) {
    waitUntil([] { return false; }, ms);
}
