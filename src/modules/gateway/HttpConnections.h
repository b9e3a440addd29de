#pragma once

#include <memory>
#include <unordered_map>

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QTimer>

#include "HeadCheck.h"
#include "IpAddress.h"
#include "TrustedProxies.h"

// One connection: where it comes from, its phase and until when that may last.
struct HttpConnection {
    enum class Phase {
        Waiting,   // for a request; its first bytes may be here
        Arriving,  // the head is here, the body is not yet
        Handling,  // a module works on the answer, or a stream has nothing to send
        Answering, // the client takes the answer
    };

    int descriptor = -1;
    IpAddress localAddress; // that the client reached
    IpAddress peer;
    Phase phase = Phase::Waiting;
    qint64 since = 0;
    qint64 deadline = 0;
    bool cut = false;
    HeadCheck head; // of the request that is just being read
    // The address of the request that is just being read holds a zero byte.
    bool zeroInTarget = false;
};

// The open connections, each with its deadline: the library's own timeout counts from the last
// byte, so a client that sends or takes one byte a minute would stay for ever. Cutting shuts the
// socket down; the library sees its end like any other. Owned by the server, on its thread; nothing
// here fails.
class HttpConnections : public QObject {
    Q_OBJECT
public:
    struct Limits {
        int connections;
        int perAddress; // of any address but the proxies
        TrustedProxies proxies;
        int idleMs;    // for a further request, and for a stream's reader that takes nothing
        int requestMs; // for a request to arrive whole, and for its answer to be taken
    };

    explicit HttpConnections(const Limits& limits);

    // A new connection. One too many of its address is cut. Where all places are taken the one that
    // has waited longest for a request is cut in its favour; where none waits, the new one is cut.
    HttpConnection* open(int descriptor);
    void close(HttpConnection* connection);

    // The phase of a connection from now on, with its deadline.
    void setWaiting(HttpConnection* connection);  // for the next request
    void setArriving(HttpConnection* connection); // the rest of a request
    void setHandling(HttpConnection* connection); // without a deadline: the answer has its own
    void setAnswering(HttpConnection* connection);
    void setStreaming(HttpConnection* connection); // a part is on its way to the reader

private:
    static constexpr int Forever = -1;

    void setPhase(HttpConnection* connection, HttpConnection::Phase phase, int timeoutMs);
    void cut(HttpConnection* connection);
    void leave(const HttpConnection* connection);
    void cutOverdue();
    HttpConnection* longestWaiting(const HttpConnection* except) const;

    Limits m_limits;
    std::unordered_map<HttpConnection*, std::unique_ptr<HttpConnection>> m_all;
    int m_live = 0;                     // not cut
    QHash<IpAddress, int> m_perAddress; // of them
    QElapsedTimer m_clock;
    QTimer m_timer;
};
