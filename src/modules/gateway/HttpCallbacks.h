#pragma once

#include <cstdarg>
#include <memory>
#include <microhttpd.h>

#include "HttpExchange.h"

class QFile;

// What libmicrohttpd calls: reads the request's head, collects its body, hands the request on and
// gives the library the answer. The connection's context pointer is a shared pointer on the heap,
// from the first call for a request until its completion. `context` is the server wherever it has
// a name. Nothing here calls a handler: the server does, when the library has returned.
class HttpCallbacks {
public:
    static void logLine(void*, const char* format, va_list arguments);
    static void onConnection(void* context, MHD_Connection* connection, void** socketContext,
                             MHD_ConnectionNotificationCode code);
    static size_t unescape(void*, MHD_Connection* connection, char* text);
    static void* onTarget(void*, const char* target, MHD_Connection* connection);
    static MHD_Result onRequest(void* context, MHD_Connection* connection, const char* url,
                                const char* method, const char* version, const char* data,
                                size_t* size, void** state);
    static void onCompleted(void*, MHD_Connection*, void** state, MHD_RequestTerminationCode);

private:
    using Handle = std::shared_ptr<HttpExchange>;
    using FileHandle = std::shared_ptr<QFile>;

    static Handle begin(HttpServer* server, MHD_Connection* connection, const char* url,
                        const char* method, const char* version);
    static bool asksBeforeSending(MHD_Connection* connection);
    static MHD_Result takeBody(HttpExchange& exchange, const char* data, size_t* size);
    static MHD_Result queue(MHD_Connection* connection, HttpExchange& exchange);

    // The library reads an answer's body by these; here `context` is the body.
    static void freeBody(void* context);
    static ssize_t readFile(void* context, uint64_t position, char* buffer, size_t size);
    static void freeFile(void* context);
    static ssize_t readSource(void* context, uint64_t, char* buffer, size_t size);
    static void freeSource(void* context);
};
