#pragma once

#include <deque>
#include <functional>
#include <memory>

#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include "HttpConnections.h"
#include "HttpLimits.h"
#include "HttpMessages.h"

struct MHD_Connection;
struct MHD_Daemon;
class HttpServer;

// One request and the answer it waits for. Shared by the server and the handler that answers;
// either may outlive the other: an answer to a connection that is gone is dropped. The first answer
// wins. The server's thread only.
class HttpExchange : public std::enable_shared_from_this<HttpExchange> {
public:
    const HttpRequest& request() const { return m_request; }
    void respond(HttpResponse response);
    // Answers 200 with a body without end.
    void respondStream(const QByteArray& contentType, std::unique_ptr<HttpBodySource> source);
    // The stream's source has something to read again.
    void wake();

private:
    friend class HttpServer;
    friend class ExchangeProbe; // the tests' requests, which have no connection

    HttpRequest m_request;
    qint64 m_received = 0;
    qint64 m_maxBody = 0;
    qint64 m_room = 0;                     // what is held for the body, part of the server's sum
    std::optional<HttpResponse> m_refusal; // nothing of the body is kept then
    std::optional<HttpResponse> m_response;
    qint64 m_answerBytes = 0; // what of m_response is part of the server's sum
    bool m_sendsFile = false;
    std::unique_ptr<HttpBodySource> m_source;
    MHD_Connection* m_connection = nullptr; // null once the connection is gone
    HttpConnection* m_about = nullptr;      // as long as m_connection
    HttpServer* m_server = nullptr;
    // Nothing that follows on the connection is read: where the body ends may mean two things.
    bool m_closes = false;
    bool m_isForwarded = false; // counted for its client's address
    bool m_answered = false;
    bool m_suspended = false;
};

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
    int openExchanges() const { return m_open.size(); }

private:
    friend class HttpExchange;
    struct Callbacks;

    void run();
    void dispatchArrived();
    void armTimer();
    void resume(HttpExchange& exchange);
    // Holds room for a body of that size. Where there is none the exchange gets its refusal.
    bool makeRoom(HttpExchange& exchange, qint64 size);
    void dropBody(HttpExchange& exchange);
    // Counts the answer until it is taken. One too many becomes a refusal.
    void holdAnswer(HttpExchange& exchange);
    void dropAnswer(HttpExchange& exchange);
    // Counts a request that came through a trusted proxy, whose connections say nothing about its
    // clients. One too many gets its refusal.
    void countForwarded(HttpExchange& exchange);
    void uncountForwarded(const HttpExchange& exchange);

    HttpLimits m_limits;
    Guard m_guard;
    Handler m_handler;
    HttpConnections m_connections;
    MHD_Daemon* m_daemon = nullptr;
    quint16 m_port = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
    std::deque<std::shared_ptr<HttpExchange>> m_arrived;
    QHash<HttpExchange*, std::shared_ptr<HttpExchange>> m_open;
    qint64 m_room = 0; // of all bodies under way
    qint64 m_answerBytes = 0;
    int m_files = 0;
    QHash<IpAddress, int> m_forwarded; // the open ones that came through a trusted proxy
    bool m_inLibrary = false;
    bool m_resumed = false;
};
