#pragma once

#include <memory>

#include "CMPath.h"
#include "HttpExchange.h"
#include "JsonReader.h"
#include "JsonWriter.h"

class ArtworkFiles;
class AccessGuard;
class EventHub;
class PageFiles;

// How much one request costs at most; docs/http-api.md names the keys.
struct ApiLimits {
    int answerMs = 30000;
    int answerBytes = JsonWriter::DefaultMaxBytes;
    int bodyValues = JsonReader::DefaultMaxValues;
};

// The table of resources: reads a request, sends it into the data model through the root, renders
// what comes back. Owned by the worker, on its thread. Whatever a client sends is answered; nothing
// here fails otherwise.
class ApiRouter {
public:
    ApiRouter(EventHub* hub, const PageFiles* pages, const ArtworkFiles* artwork,
              AccessGuard* guard, const ApiLimits& limits)
        : m_hub(hub), m_pages(pages), m_artwork(artwork), m_guard(guard), m_limits(limits) {}

    // How large a request's body may be, for all that the router cares; 0 where none is taken.
    static int maxBody(const HttpRequest& request);

    void handle(const std::shared_ptr<HttpExchange>& exchange);

private:
    using Exchange = std::shared_ptr<HttpExchange>;
    struct RouteOptions {
        bool answersHead = false; // like GET, without the body
        int maxBody = 0;          // of the request
    };
    struct Route {
        const char* method;
        const char* path;
        void (ApiRouter::*handler)(const Exchange&);
        RouteOptions options = {};
    };
    static const QVector<Route>& routes();

    void getPaths(const Exchange& exchange);
    void getModules(const Exchange& exchange);
    void getRows(const Exchange& exchange);
    void postData(const Exchange& exchange);
    void getValue(const Exchange& exchange);
    void putValue(const Exchange& exchange);
    void getEvents(const Exchange& exchange);
    void getArtwork(const Exchange& exchange);
    void postLogin(const Exchange& exchange);
    void refuseUnrouted(const Exchange& exchange, const QStringList& allowed);

    EventHub* m_hub;
    const PageFiles* m_pages;
    const ArtworkFiles* m_artwork;
    AccessGuard* m_guard;
    ApiLimits m_limits;
};
