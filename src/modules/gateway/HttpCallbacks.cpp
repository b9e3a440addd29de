#include "HttpCallbacks.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

#include <QFile>
#include <QTextCodec>

#include "GatewayLog.h"
#include "HttpServer.h"

namespace {

// What is read and thrown away of a body that is not taken, so that its sender gets to read the
// answer.
constexpr qint64 MaxDiscarded = 64 * 1024 * 1024;
constexpr size_t StreamBlock = 16 * 1024;

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

struct KnownHeader {
    const char* name;
    QByteArray HttpRequest::*member;
};
constexpr KnownHeader KnownHeaders[] = {
    {"Authorization", &HttpRequest::authorization}, {"Cookie", &HttpRequest::cookie},
    {"If-None-Match", &HttpRequest::ifNoneMatch},   {"Last-Event-ID", &HttpRequest::lastEventId},
    {"Sec-Fetch-Dest", &HttpRequest::fetchDest},    {"Sec-Fetch-Mode", &HttpRequest::fetchMode},
    {"Sec-Fetch-Site", &HttpRequest::fetchSite},
};

struct HeadBeingRead {
    HttpRequest* request;
    HeadCheck* check;
};

MHD_Result collectHeader(void* context, MHD_ValueKind, const char* name, size_t nameSize,
                         const char* text, size_t size) {
    const auto* head = static_cast<HeadBeingRead*>(context);
    HttpRequest* request = head->request;
    head->check->takeField({name, nameSize}, {text, size});
    const QByteArray value(text, int(size));
    ++request->headerFields;
    if (qstricmp(name, "Host") == 0) {
        request->host = value;
        ++request->hostCount;
    } else if (qstricmp(name, "Origin") == 0) {
        request->origins.append(value);
    } else if (qstricmp(name, "X-Forwarded-For") == 0) {
        request->forwardedFor.append(value);
    } else {
        for (const KnownHeader& known : KnownHeaders) {
            if (qstricmp(name, known.name) == 0) {
                request->*known.member = value;
                break;
            }
        }
    }
    return MHD_YES;
}

// With every answer. Whatever is shown of this device loads nothing from outside, runs no script
// but the page's own files, and stands in no other site's frame.
QByteArray contentPolicy(const QByteArray& ownStyle) {
    const QByteArray style = ownStyle.isEmpty() ? ownStyle : " '" + ownStyle + '\'';
    return "default-src 'none'; script-src 'self'; style-src 'self'" + style +
           "; img-src 'self'; connect-src 'self'; manifest-src 'self'; base-uri 'none'; "
           "form-action 'none'; frame-ancestors 'none'";
}

constexpr struct {
    const char* name;
    const char* value;
} SafetyHeaders[] = {
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
};

HttpConnection* connectionOf(MHD_Connection* connection) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    return info ? static_cast<HttpConnection*>(info->socket_context) : nullptr;
}

MHD_Result collectParameter(void* context, MHD_ValueKind, const char* key, size_t keySize,
                            const char* value, size_t valueSize) {
    auto* request = static_cast<HttpRequest*>(context);
    const QString name = decodeText(key, keySize, &request->illegalText);
    request->query.append({name, decodeText(value, valueSize, &request->illegalText)});
    return MHD_YES;
}

} // namespace

void HttpCallbacks::logLine(void*, const char* format, va_list arguments) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    LOG4CPLUS_DEBUG(gatewayLog(), "http: " << QString::fromUtf8(text).trimmed());
}

void HttpCallbacks::onConnection(void* context, MHD_Connection* connection, void** socketContext,
                                 MHD_ConnectionNotificationCode code) {
    auto* server = static_cast<HttpServer*>(context);
    HttpConnections& all = server->m_connections;
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
        const MHD_ConnectionInfo* info =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
        *socketContext = all.open(info->connect_fd);
    } else {
        all.close(static_cast<HttpConnection*>(*socketContext));
        // Where all places were taken the library has looked away from those who knock. It looks
        // again in its next run, which nothing else would bring about.
        server->m_resumed = true;
    }
}

// A zero byte would end the address for a reader of C strings.
size_t HttpCallbacks::unescape(void*, MHD_Connection* connection, char* text) {
    const size_t size = MHD_http_unescape(text);
    if (std::memchr(text, 0, size))
        connectionOf(connection)->zeroInTarget = true;
    return size;
}

// The target as it arrived. What is returned becomes the request's state.
void* HttpCallbacks::onTarget(void*, const char* target, MHD_Connection* connection) {
    connectionOf(connection)->head = HeadCheck(target);
    return nullptr;
}

MHD_Result HttpCallbacks::onRequest(void* context, MHD_Connection* connection, const char* url,
                                    const char* method, const char* version, const char* data,
                                    size_t* size, void** state) {
    auto* server = static_cast<HttpServer*>(context);
    if (!*state) {
        *state = new Handle(begin(server, connection, url, method, version));
        HttpExchange& exchange = **static_cast<Handle*>(*state);
        // Where its body would end is as unclear as the head; a client that asks before it sends
        // gets its answer before it sends.
        const bool atOnce = exchange.m_request.headIsUnclear || asksBeforeSending(connection);
        if (!exchange.m_refusal || !atOnce)
            return MHD_YES;
        exchange.respond(std::move(*exchange.m_refusal));
        return queue(connection, exchange);
    }
    const Handle& exchange = *static_cast<Handle*>(*state);
    if (*size > 0)
        return takeBody(*exchange, data, size);
    if (exchange->m_refusal && !exchange->m_answered)
        exchange->respond(std::move(*exchange->m_refusal));
    if (exchange->m_answered)
        return queue(connection, *exchange);
    // The handler runs when the library has returned; until it has answered the connection sleeps.
    server->m_connections.setHandling(exchange->m_connection);
    exchange->m_suspended = true;
    MHD_suspend_connection(connection);
    server->m_arrived.push_back(exchange);
    return MHD_YES;
}

void HttpCallbacks::onCompleted(void*, MHD_Connection*, void** state, MHD_RequestTerminationCode) {
    auto* handle = static_cast<Handle*>(*state);
    if (!handle)
        return;
    HttpExchange& exchange = **handle;
    HttpServer* server = exchange.m_server;
    server->m_connections.setWaiting(exchange.m_connection);
    server->dropBody(exchange);
    server->m_quotas.dropAnswer(exchange.m_share);
    server->m_quotas.uncountForwarded(exchange.m_share);
    exchange.m_mhdConnection = nullptr;
    exchange.m_connection = nullptr;
    exchange.m_server = nullptr;
    server->m_open.remove(&exchange);
    delete handle;
    *state = nullptr;
}

HttpCallbacks::Handle HttpCallbacks::begin(HttpServer* server, MHD_Connection* connection,
                                           const char* url, const char* method,
                                           const char* version) {
    auto exchange = std::make_shared<HttpExchange>();
    exchange->m_mhdConnection = connection;
    exchange->m_server = server;
    exchange->m_connection = connectionOf(connection);
    server->m_connections.setArriving(exchange->m_connection);
    HttpRequest& request = exchange->m_request;
    request.method = method;
    request.path = decodeText(url, qstrlen(url), &request.illegalText);
    request.illegalText = request.illegalText || exchange->m_connection->zeroInTarget;
    exchange->m_connection->zeroInTarget = false;
    MHD_get_connection_values_n(connection, MHD_GET_ARGUMENT_KIND, collectParameter, &request);
    HeadCheck& check = exchange->m_connection->head;
    check.takeRequestLine(method, version);
    HeadBeingRead reading{&request, &check};
    MHD_get_connection_values_n(connection, MHD_HEADER_KIND, collectHeader, &reading);
    request.localAddress = exchange->m_connection->localAddress;
    request.client =
        server->m_limits.proxies.clientOf(exchange->m_connection->peer, request.forwardedFor);
    const MHD_ConnectionInfo* head =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_REQUEST_HEADER_SIZE);
    request.headTooLarge = request.headerFields > server->m_limits.headerFields ||
                           head->header_size > size_t(server->m_limits.headBytes);
    check.end(head->header_size);
    request.headIsUnclear = !check.isPlain();
    exchange->m_closes = request.headIsUnclear || check.isChunked();
    HttpServer::Admission admission = server->m_guard(request);
    exchange->m_refusal = std::move(admission.refusal);
    exchange->m_maxBody = admission.maxBody;
    // A proxy's connections say nothing about its clients.
    if (request.client != exchange->m_connection->peer) {
        auto tooMany = server->m_quotas.countForwarded(exchange->m_share, request.client);
        if (!exchange->m_refusal)
            exchange->m_refusal = std::move(tooMany);
    }
    // The library has read it as a number; a body in chunks takes its room as it grows.
    if (!exchange->m_refusal)
        server->makeRoom(*exchange,
                         headerValue(connection, MHD_HTTP_HEADER_CONTENT_LENGTH).toLongLong());
    server->m_open.insert(exchange.get(), exchange);
    return exchange;
}

bool HttpCallbacks::asksBeforeSending(MHD_Connection* connection) {
    return headerValue(connection, MHD_HTTP_HEADER_EXPECT).toLower() == "100-continue";
}

MHD_Result HttpCallbacks::takeBody(HttpExchange& exchange, const char* data, size_t* size) {
    exchange.m_received += qint64(*size);
    if (exchange.m_received > MaxDiscarded)
        return MHD_NO;
    if (!exchange.m_refusal && exchange.m_server->makeRoom(exchange, exchange.m_received)) {
        QByteArray& body = exchange.m_request.body;
        body.reserve(int(exchange.m_share.bodyBytes));
        body.append(data, int(*size));
    }
    *size = 0;
    return MHD_YES;
}

MHD_Result HttpCallbacks::queue(MHD_Connection* connection, HttpExchange& exchange) {
    exchange.m_server->m_connections.setAnswering(exchange.m_connection);
    MHD_Response* response = nullptr;
    const HttpResponse& answer = *exchange.m_response;
    if (exchange.m_source) {
        response =
            MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, StreamBlock, readSource,
                                              new Handle(exchange.shared_from_this()), freeSource);
    } else if (answer.file) {
        response = MHD_create_response_from_callback(
            quint64(answer.fileSize), StreamBlock, readFile, new FileHandle(answer.file), freeFile);
    } else {
        // The library reads from a share of the body, not from a copy.
        auto* body = new QByteArray(answer.body);
        response = MHD_create_response_from_buffer_with_free_callback_cls(
            size_t(body->size()), const_cast<char*>(body->constData()), freeBody, body);
        if (!response)
            delete body;
    }
    if (!response)
        return MHD_NO;
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.contentType.constData());
    MHD_add_response_header(response, "Content-Security-Policy",
                            contentPolicy(answer.ownStyle).constData());
    for (const auto& header : SafetyHeaders)
        MHD_add_response_header(response, header.name, header.value);
    for (const auto& header : answer.headers)
        MHD_add_response_header(response, header.first.constData(), header.second.constData());
    if (exchange.m_closes)
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
    const MHD_Result queued = MHD_queue_response(connection, unsigned(answer.status), response);
    MHD_destroy_response(response);
    return queued;
}

void HttpCallbacks::freeBody(void* context) {
    delete static_cast<QByteArray*>(context);
}

// A file that has become shorter ends its connection: the client knows from the length that
// something is missing.
ssize_t HttpCallbacks::readFile(void* context, uint64_t position, char* buffer, size_t size) {
    const int descriptor = (*static_cast<FileHandle*>(context))->handle();
    const ssize_t count = ::pread(descriptor, buffer, size, off_t(position));
    return count > 0 ? count : ssize_t(MHD_CONTENT_READER_END_WITH_ERROR);
}

void HttpCallbacks::freeFile(void* context) {
    delete static_cast<FileHandle*>(context);
}

void HttpCallbacks::freeSource(void* context) {
    auto* handle = static_cast<Handle*>(context);
    (*handle)->m_source.reset();
    delete handle;
}

ssize_t HttpCallbacks::readSource(void* context, uint64_t, char* buffer, size_t size) {
    HttpExchange& exchange = **static_cast<Handle*>(context);
    const qint64 count = exchange.m_source->read(buffer, qint64(size));
    HttpConnections& all = exchange.m_server->m_connections;
    if (count == 0) {
        all.setHandling(exchange.m_connection);
        exchange.m_suspended = true;
        MHD_suspend_connection(exchange.m_mhdConnection);
    } else {
        all.setStreaming(exchange.m_connection);
    }
    return ssize_t(count);
}
