#pragma once

#include <memory>
#include <optional>

#include "HttpMessages.h"
#include "HttpQuotas.h"

struct HttpConnection;
struct MHD_Connection;
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
    friend class HttpCallbacks;
    friend class HttpServer;
    friend class ExchangeProbe; // the tests' requests, which have no connection

    HttpRequest m_request;
    qint64 m_received = 0;
    qint64 m_maxBody = 0;
    HttpQuotas::Share m_share;
    std::optional<HttpResponse> m_refusal; // nothing of the body is kept then
    std::optional<HttpResponse> m_response;
    std::unique_ptr<HttpBodySource> m_source;
    // All three null once the connection is gone.
    MHD_Connection* m_mhdConnection = nullptr;
    HttpConnection* m_connection = nullptr;
    HttpServer* m_server = nullptr;
    // Nothing that follows on the connection is read: where the body ends may mean two things.
    bool m_closes = false;
    bool m_answered = false;
    bool m_suspended = false;
};
