#pragma once

#include <QObject>
#include <QSocketNotifier>

// What the system tells a terminal program, in the event loop: another window size, and that it is
// to end. At most one at a time; restores what was there when it goes. Made before the Terminal,
// which would otherwise answer them itself.
class TerminalSignals : public QObject {
    Q_OBJECT
public:
    TerminalSignals();
    ~TerminalSignals() override;

Q_SIGNALS:
    void resized();
    void ended();

private:
    void onWoken();
};
