#include "ExchangeProbe.h"

namespace {

QString decoded(const QByteArray& text, bool* illegal) {
    const QByteArray bytes = QByteArray::fromPercentEncoding(text);
    const QString result = QString::fromUtf8(bytes);
    if (result.toUtf8() != bytes)
        *illegal = true;
    return result;
}

QByteArray takeLine(QByteArray* text) {
    const int end = text->indexOf('\n');
    const QByteArray line = text->mid(0, end);
    *text = end < 0 ? QByteArray() : text->mid(end + 1);
    return line;
}

} // namespace

std::shared_ptr<HttpExchange> ExchangeProbe::read(const QByteArray& text) {
    auto exchange = std::make_shared<HttpExchange>();
    HttpRequest& request = exchange->m_request;
    QByteArray rest = text;
    const QByteArray first = takeLine(&rest);
    const int space = first.indexOf(' ');
    request.method = first.mid(0, space);
    const QByteArray address = space < 0 ? QByteArray() : first.mid(space + 1);
    const int question = address.indexOf('?');
    request.path = decoded(address.mid(0, question), &request.illegalText);
    if (question >= 0) {
        for (const QByteArray& pair : address.mid(question + 1).split('&')) {
            const int equals = pair.indexOf('=');
            const QString name = decoded(pair.mid(0, equals), &request.illegalText);
            const QByteArray value = equals < 0 ? QByteArray() : pair.mid(equals + 1);
            request.query.append({name, decoded(value, &request.illegalText)});
        }
    }
    request.host = "127.0.0.1:8080";
    request.hostCount = 1;
    const auto take = [](const QByteArray& line, const char* name, QByteArray* value) {
        if (line.startsWith(name))
            *value = line.mid(int(qstrlen(name)));
    };
    for (QByteArray line = takeLine(&rest); !line.isEmpty(); line = takeLine(&rest)) {
        take(line, "Last-Event-ID: ", &request.lastEventId);
        take(line, "If-None-Match: ", &request.ifNoneMatch);
        take(line, "Host: ", &request.host);
        take(line, "Authorization: ", &request.authorization);
        take(line, "Cookie: ", &request.cookie);
        take(line, "Sec-Fetch-Site: ", &request.fetchSite);
        take(line, "Sec-Fetch-Mode: ", &request.fetchMode);
        take(line, "Sec-Fetch-Dest: ", &request.fetchDest);
        if (line.startsWith("Origin: "))
            request.origins.append(line.mid(8));
    }
    request.body = rest;
    return exchange;
}

const HttpResponse* ExchangeProbe::answer(const HttpExchange& exchange) {
    return exchange.m_answered ? &*exchange.m_response : nullptr;
}

QByteArray ExchangeProbe::stream(const HttpExchange& exchange) {
    QByteArray text;
    if (!exchange.m_source)
        return text;
    char buffer[4096];
    for (qint64 size = 0; (size = exchange.m_source->read(buffer, sizeof buffer)) > 0;)
        text.append(buffer, int(size));
    return text;
}
