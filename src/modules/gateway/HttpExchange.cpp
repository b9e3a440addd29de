#include "HttpExchange.h"

#include "HttpServer.h"

void HttpExchange::respond(HttpResponse response) {
    if (m_answered)
        return;
    m_answered = true;
    m_response = std::move(response);
    if (!m_server)
        return;
    m_server->m_quotas.holdAnswer(m_share, *m_response);
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
