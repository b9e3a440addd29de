#pragma once

#include <QElapsedTimer>
#include <QHash>

#include "IpAddress.h"

// Counts the wrong tokens of each address within a minute from the first one, and logs them. Owned
// by the guard, on its thread; nothing here fails.
class WrongTokens {
public:
    struct Limits {
        int attempts = 10;
        int windowMs = 60000;
    };

    explicit WrongTokens(const Limits& limits);

    void note(const IpAddress& address);
    // In how many seconds the address may try again; 0 when it may now.
    int blockedSeconds(const IpAddress& address) const;
    int addresses() const { return m_windows.size(); }

    // Of more addresses the one whose minute began first is forgotten.
    static constexpr int MaxAddresses = 1024;
    // Lines within a minute, for all addresses together.
    static constexpr int MaxLogged = 100;

private:
    struct Window {
        qint64 since = 0; // in nanoseconds of the clock
        int count = 0;
    };
    bool isOver(const Window& window) const;
    qint64 leftNs(const Window& window) const;
    void makePlace();
    void log(const IpAddress& address, int count);

    Limits m_limits;
    QElapsedTimer m_clock;
    QHash<IpAddress, Window> m_windows;
    Window m_logged;
};
