#include "HttpServer.h"

#include <cstdarg>
#include <cstdio>
#include <microhttpd.h>

#include <QTextCodec>

#include "CMLog.h"
#include "ListenSocket.h"

namespace {

// Enough for every screen, shell and script around one device; each costs at most ConnectionMemory.
constexpr unsigned MaxConnections = 512;
// Holds the request line and the headers: a path whose every byte is percent-encoded twice is long.
constexpr size_t ConnectionMemory = 64 * 1024;
// An idle kept-alive connection, and a reader that takes nothing, is closed after this.
constexpr unsigned IdleSeconds = 120;
// What is read and thrown away of a body that is too large, so that its sender gets to read the
// answer.
constexpr qint64 MaxDiscarded = 64 * 1024 * 1024;
constexpr size_t StreamBlock = 16 * 1024;
// After so many rounds without a pause other parts of the host get their turn.
constexpr int MaxRounds = 8;

log4cplus::Logger& logger() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Gateway"));
    return instance;
}

void logLibraryLine(void*, const char* format, va_list arguments) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    LOG4CPLUS_DEBUG(logger(), "http: " << QString::fromUtf8(text).trimmed());
}

QString decodeText(const char* data, size_t size, bool* illegal) {
    if (!data)
        return {};
    static QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = utf8->toUnicode(data, int(size), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        *illegal = true;
    return text;
}

QByteArray headerValue(MHD_Connection* connection, const char* name) {
    return QByteArray(MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name));
}

MHD_Result collectParameter(void* context, MHD_ValueKind, const char* key, size_t keySize,
                            const char* value, size_t valueSize) {
    auto* request = static_cast<HttpRequest*>(context);
    const QString name = decodeText(key, keySize, &request->illegalText);
    request->query.append({name, decodeText(value, valueSize, &request->illegalText)});
    return MHD_YES;
}

} // namespace

// What libmicrohttpd calls. The connection's context pointer is a shared pointer on the heap, from
// the first call for a request until its completion.
struct HttpServer::Callbacks {
    using Handle = std::shared_ptr<HttpExchange>;

    static MHD_Result onRequest(void* context, MHD_Connection* connection, const char* url,
                                const char* method, const char*, const char* data, size_t* size,
                                void** state) {
        auto* server = static_cast<HttpServer*>(context);
        if (!*state) {
            *state = new Handle(begin(server, connection, url, method));
            return refuseAnnouncedBody(server, connection, **static_cast<Handle*>(*state));
        }
        const Handle& exchange = *static_cast<Handle*>(*state);
        if (*size > 0)
            return takeBody(*exchange, data, size);
        if (exchange->m_answered)
            return queue(connection, *exchange);
        // The handler runs when the library has returned; until it has answered the connection
        // sleeps.
        exchange->m_suspended = true;
        MHD_suspend_connection(connection);
        server->m_arrived.push_back(exchange);
        return MHD_YES;
    }

    static void onCompleted(void*, MHD_Connection*, void** state, MHD_RequestTerminationCode) {
        auto* handle = static_cast<Handle*>(*state);
        if (!handle)
            return;
        HttpExchange& exchange = **handle;
        HttpServer* server = exchange.m_server;
        exchange.m_connection = nullptr;
        exchange.m_server = nullptr;
        server->m_open.remove(&exchange);
        delete handle;
        *state = nullptr;
    }

    static Handle begin(HttpServer* server, MHD_Connection* connection, const char* url,
                        const char* method) {
        auto exchange = std::make_shared<HttpExchange>();
        exchange->m_connection = connection;
        exchange->m_server = server;
        HttpRequest& request = exchange->m_request;
        request.method = method;
        request.path = decodeText(url, qstrlen(url), &request.illegalText);
        MHD_get_connection_values_n(connection, MHD_GET_ARGUMENT_KIND, collectParameter, &request);
        request.lastEventId = headerValue(connection, "Last-Event-ID");
        request.ifNoneMatch = headerValue(connection, MHD_HTTP_HEADER_IF_NONE_MATCH);
        server->m_open.insert(exchange.get(), exchange);
        return exchange;
    }

    // A client that asks before it sends gets its answer before it sends.
    static MHD_Result refuseAnnouncedBody(HttpServer* server, MHD_Connection* connection,
                                          HttpExchange& exchange) {
        const bool asks =
            headerValue(connection, MHD_HTTP_HEADER_EXPECT).toLower() == "100-continue";
        if (!asks ||
            headerValue(connection, MHD_HTTP_HEADER_CONTENT_LENGTH).toLongLong() <= MaxBody)
            return MHD_YES;
        exchange.m_request.bodyTooLarge = true;
        server->m_handler(exchange.shared_from_this());
        return exchange.m_answered ? queue(connection, exchange) : MHD_NO;
    }

    static MHD_Result takeBody(HttpExchange& exchange, const char* data, size_t* size) {
        exchange.m_received += qint64(*size);
        if (exchange.m_received > MaxDiscarded)
            return MHD_NO;
        if (exchange.m_received > MaxBody) {
            exchange.m_request.bodyTooLarge = true;
            exchange.m_request.body = QByteArray();
        } else {
            exchange.m_request.body.append(data, int(*size));
        }
        *size = 0;
        return MHD_YES;
    }

    static MHD_Result queue(MHD_Connection* connection, HttpExchange& exchange) {
        MHD_Response* response = nullptr;
        const HttpResponse& answer = *exchange.m_response;
        if (exchange.m_source) {
            response = MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, StreamBlock, readSource,
                                                         new Handle(exchange.shared_from_this()),
                                                         freeSource);
        } else {
            response = MHD_create_response_from_buffer(size_t(answer.body.size()),
                                                       const_cast<char*>(answer.body.constData()),
                                                       MHD_RESPMEM_MUST_COPY);
        }
        if (!response)
            return MHD_NO;
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE,
                                answer.contentType.constData());
        for (const auto& header : answer.headers)
            MHD_add_response_header(response, header.first.constData(), header.second.constData());
        const MHD_Result queued = MHD_queue_response(connection, unsigned(answer.status), response);
        MHD_destroy_response(response);
        return queued;
    }

    static void freeSource(void* context) {
        auto* handle = static_cast<Handle*>(context);
        (*handle)->m_source.reset();
        delete handle;
    }

    static ssize_t readSource(void* context, uint64_t, char* buffer, size_t size) {
        HttpExchange& exchange = **static_cast<Handle*>(context);
        const qint64 count = exchange.m_source->read(buffer, qint64(size));
        if (count == 0) {
            exchange.m_suspended = true;
            MHD_suspend_connection(exchange.m_connection);
        }
        return ssize_t(count);
    }
};

void HttpExchange::respond(HttpResponse response) {
    if (m_answered)
        return;
    m_answered = true;
    m_response = std::move(response);
    if (m_server)
        m_server->resume(*this);
}

void HttpExchange::respondStream(const QByteArray& contentType,
                                 std::unique_ptr<HttpBodySource> source) {
    if (m_answered)
        return;
    m_source = std::move(source);
    respond({200, contentType, {}, {{"Cache-Control", "no-store"}, {"X-Accel-Buffering", "no"}}});
}

void HttpExchange::wake() {
    if (m_server)
        m_server->resume(*this);
}

HttpServer::HttpServer(Handler handler, QObject* parent)
    : QObject(parent), m_handler(std::move(handler)) {
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

bool HttpServer::listen(const QString& address, QString* error) {
    ListenSocket socket;
    if (!socket.open(address, error))
        return false;
    m_daemon = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG, 0, nullptr, nullptr,
        &Callbacks::onRequest, this, MHD_OPTION_EXTERNAL_LOGGER, &logLibraryLine, nullptr,
        MHD_OPTION_LISTEN_SOCKET, socket.descriptor(), MHD_OPTION_CONNECTION_LIMIT, MaxConnections,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, ConnectionMemory, MHD_OPTION_CONNECTION_TIMEOUT,
        IdleSeconds, MHD_OPTION_NOTIFY_COMPLETED, &Callbacks::onCompleted, nullptr, MHD_OPTION_END);
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
    armTimer();
}

void HttpServer::dispatchArrived() {
    while (!m_arrived.empty()) {
        const std::shared_ptr<HttpExchange> exchange = std::move(m_arrived.front());
        m_arrived.pop_front();
        m_handler(exchange);
    }
}

void HttpServer::armTimer() {
    MHD_UNSIGNED_LONG_LONG milliseconds = 0;
    if (MHD_get_timeout(m_daemon, &milliseconds) == MHD_YES)
        m_timer.start(int(qMin<quint64>(milliseconds, IdleSeconds * 1000)));
    else
        m_timer.stop();
}

void HttpServer::resume(HttpExchange& exchange) {
    if (!exchange.m_suspended || !exchange.m_connection)
        return;
    exchange.m_suspended = false;
    m_resumed = true;
    MHD_resume_connection(exchange.m_connection);
    // The library goes on with it in its next run, which nothing else would bring about.
    m_timer.start(0);
}
