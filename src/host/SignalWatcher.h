#pragma once

#include <QObject>

// SIGINT and SIGTERM as an event of the event loop, so that ending runs like any other work and not
// in the middle of it. Made by main, once, before the first module. What keeps the loop waiting
// meanwhile sees the signal by cmEndRequested(). After the first one the default action is back: a
// second one ends a process that does not end. Also ignores SIGPIPE, so that a client that goes
// away is an error of the write and no more.
class SignalWatcher : public QObject {
    Q_OBJECT
public:
    explicit SignalWatcher(QObject* parent = nullptr);
    ~SignalWatcher() override;

Q_SIGNALS:
    void endRequested(int signalNumber);

private:
    void readSignal();

    int m_reader = -1;
};
