#pragma once

#include <deque>
#include <functional>
#include <memory>

#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include "HttpConnections.h"
#include "HttpExchange.h"
#include "HttpLimits.h"
#include "HttpQuotas.h"

struct MHD_Daemon;

// An HTTP server inside the Qt event loop: libmicrohttpd without a thread of its own, its epoll
// descriptor watched by a notifier. Owned by the worker, on its thread. Requests reach the handler
// outside the library's callbacks, so a handler may take its time, answer later, or run an event
// loop. What a client sends never fails the server; an address that cannot be bound makes listen()
// return false.
class HttpServer : public QObject {
    Q_OBJECT
public:
    using Handler = std::function<void(const std::shared_ptr<HttpExchange>&)>;
    struct Admission {
        std::optional<HttpResponse> refusal; // keeps the request from the handler
        int maxBody = 0;                     // how large its body may be
    };
    // Looks at the head of a request, before anything of its body is kept.
    using Guard = std::function<Admission(const HttpRequest&)>;

    HttpServer(const HttpLimits& limits, Guard guard, Handler handler);
    ~HttpServer() override;

    // `address` is "127.0.0.1:8080", "[::1]:8080" or "localhost:8080"; port 0 takes any free one.
    // `loopbackOnly`: fails for an address that other machines reach.
    bool listen(const QString& address, bool loopbackOnly, QString* error);
    // The port in use, 0 before listen().
    quint16 port() const { return m_port; }

private:
    friend class HttpCallbacks;
    friend class HttpExchange;

    void run();
    void dispatchArrived();
    void armTimer();
    void resume(HttpExchange& exchange);
    // Holds room for a body of that size. Where there is none the exchange gets its refusal.
    bool makeRoom(HttpExchange& exchange, qint64 size);
    void dropBody(HttpExchange& exchange);

    HttpLimits m_limits;
    Guard m_guard;
    Handler m_handler;
    HttpConnections m_connections;
    HttpQuotas m_quotas;
    MHD_Daemon* m_daemon = nullptr;
    quint16 m_port = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
    std::deque<std::shared_ptr<HttpExchange>> m_arrived;
    QHash<HttpExchange*, std::shared_ptr<HttpExchange>> m_open;
    bool m_inLibrary = false;
    bool m_resumed = false;
};
