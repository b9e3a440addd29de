#include "HttpServer.h"

#include <microhttpd.h>

#include "HttpCallbacks.h"
#include "ListenSocket.h"

namespace {

// What the library keeps of a connection besides the head of its request: the answer's head, and
// what it knows of each header field.
constexpr size_t SpareMemory = 32 * 1024;
// Of a library that has nothing to wait for.
constexpr int MaxPauseMs = 120000;
// After so many rounds without a pause other parts of the host get their turn.
constexpr int MaxRounds = 8;

} // namespace

HttpServer::HttpServer(const HttpLimits& limits, Guard guard, Handler handler)
    : m_limits(limits),
      m_guard(std::move(guard)),
      m_handler(std::move(handler)),
      m_connections({limits.connections, limits.connectionsPerAddress, limits.proxies,
                     limits.idleMs, limits.requestMs}),
      m_quotas(
          {limits.bodiesBytes, limits.answersBytes, limits.files, limits.connectionsPerAddress}) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, this, &HttpServer::run);
}

HttpServer::~HttpServer() {
    if (!m_daemon)
        return;
    m_notifier.reset();
    // The library refuses to stop while a connection is suspended.
    const auto open = m_open;
    for (const auto& exchange : open)
        resume(*exchange);
    MHD_stop_daemon(m_daemon);
}

bool HttpServer::listen(const QString& address, bool loopbackOnly, QString* error) {
    ListenSocket socket;
    if (!socket.open(address, loopbackOnly, error))
        return false;
    const unsigned connections = unsigned(m_limits.connections + HttpLimits::SpareConnections);
    const size_t memory = 2 * size_t(m_limits.headBytes) + SpareMemory;
    m_daemon = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG, 0, nullptr, nullptr,
        &HttpCallbacks::onRequest, this, MHD_OPTION_EXTERNAL_LOGGER, &HttpCallbacks::logLine,
        nullptr, MHD_OPTION_LISTEN_SOCKET, socket.descriptor(), MHD_OPTION_CONNECTION_LIMIT,
        connections, MHD_OPTION_CONNECTION_MEMORY_LIMIT, memory, MHD_OPTION_NOTIFY_CONNECTION,
        &HttpCallbacks::onConnection, this, MHD_OPTION_UNESCAPE_CALLBACK, &HttpCallbacks::unescape,
        nullptr, MHD_OPTION_URI_LOG_CALLBACK, &HttpCallbacks::onTarget, nullptr,
        MHD_OPTION_NOTIFY_COMPLETED, &HttpCallbacks::onCompleted, nullptr, MHD_OPTION_END);
    socket.release(); // the daemon's now, which closes it
    const MHD_DaemonInfo* epoll =
        m_daemon ? MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_EPOLL_FD) : nullptr;
    if (!epoll) {
        *error = QStringLiteral("libmicrohttpd cannot serve %1").arg(address);
        return false;
    }
    m_port = socket.port();
    m_notifier = std::make_unique<QSocketNotifier>(epoll->epoll_fd, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { run(); });
    armTimer();
    return true;
}

void HttpServer::run() {
    // A handler that runs an event loop comes back here between two calls of the library, never
    // inside one.
    if (m_inLibrary)
        return;
    for (int round = 0; round < MaxRounds; ++round) {
        m_resumed = false;
        m_inLibrary = true;
        MHD_run(m_daemon);
        m_inLibrary = false;
        dispatchArrived();
        if (!m_resumed)
            break;
    }
    if (m_resumed)
        m_timer.start(0);
    else
        armTimer();
}

void HttpServer::dispatchArrived() {
    while (!m_arrived.empty()) {
        const std::shared_ptr<HttpExchange> exchange = std::move(m_arrived.front());
        m_arrived.pop_front();
        m_handler(exchange);
        dropBody(*exchange); // the handler has read it
    }
}

bool HttpServer::makeRoom(HttpExchange& exchange, qint64 size) {
    exchange.m_refusal =
        m_quotas.holdBody(exchange.m_share, exchange.m_request, size, exchange.m_maxBody);
    if (exchange.m_refusal)
        dropBody(exchange);
    return !exchange.m_refusal;
}

void HttpServer::dropBody(HttpExchange& exchange) {
    exchange.m_request.body = QByteArray();
    m_quotas.dropBody(exchange.m_share);
}

void HttpServer::armTimer() {
    MHD_UNSIGNED_LONG_LONG milliseconds = 0;
    if (MHD_get_timeout(m_daemon, &milliseconds) == MHD_YES)
        m_timer.start(int(qMin<quint64>(milliseconds, MaxPauseMs)));
    else
        m_timer.stop();
}

void HttpServer::resume(HttpExchange& exchange) {
    if (!exchange.m_suspended || !exchange.m_mhdConnection)
        return;
    exchange.m_suspended = false;
    m_resumed = true;
    MHD_resume_connection(exchange.m_mhdConnection);
    // The library goes on with it in its next run, which nothing else would bring about.
    m_timer.start(0);
}
