#pragma once

#include <memory>

#include "HttpExchange.h"

// Requests as the HTTP server would hand them to the router, without a connection.
class ExchangeProbe {
public:
    // "METHOD ADDRESS", headers until an empty line, the body. The address is decoded as the
    // server does it; headers that the server does not look at are left out.
    static std::shared_ptr<HttpExchange> read(const QByteArray& text);

    // Null while there is no answer.
    static const HttpResponse* answer(const HttpExchange& exchange);
    // What a stream without end has to say at the moment.
    static QByteArray stream(const HttpExchange& exchange);
};
