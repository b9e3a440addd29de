#pragma once

#include "AccessGuard.h"
#include "ApiRouter.h"
#include "ArtworkFiles.h"
#include "CMWorker.h"
#include "EventHub.h"
#include "HttpServer.h"
#include "PageFiles.h"

// The gateway module: builds and wires the HTTP side of the data model. Made by worker_create,
// owned by the host, on its thread. The port in use is the value at "gateway:port",
// the device's name that at "gateway:name".
//
// Configuration, all optional:
//   gateway/listen           ADDRESS:PORT, port 0 for any free one; default 127.0.0.1:8080
//   gateway/portFile         file to write the port in use to, atomically
//   gateway/name             what the device is called; default the machine's host name
//   gateway/webRoot          folder of the web page's files
//   musicDir                 folder whose pictures are served as artwork
//   dataDir                  its folder "artwork" has further pictures
//   gateway/answerTimeoutMs  how long a module may take to answer; default 30000
//   gateway/tokenFile        file with the token that every request to /api/ carries; needed for an
//                            address that other machines reach
//   gateway/hosts            further names of the device, with commas between
//   gateway/trustedProxies   addresses and networks, with commas between, whose X-Forwarded-For
//                            counts
//   gateway/commentMs        how often a silent event stream shows that it lives; default 15000
//   gateway/historyEvents    how many events a reader can come back to; default 4096
// and the limits, see the table in GatewayWorker.cpp.
class GatewayWorker : public CMNodesWorker {
    Q_OBJECT
public:
    explicit GatewayWorker(const QHash<QString, QVariant>& config);

    // Opens the port. False when that is impossible: logged as fatal, the module is of no use then.
    bool start();
    // Why start() failed.
    QString failure() const { return m_failure; }
    quint16 port() const { return m_server.port(); }
    int openStreams() const { return m_hub.streams(); }

    QVariant getValue(const CMPath& path) override;

private:
    bool fail(const QString& reason);
    QString name() const;
    QString text(const char* key) const;
    HttpServer::Admission admit(const HttpRequest& request);

    QString m_failure; // of the configuration, before the start
    HttpLimits m_limits;
    // The server carries the streams that the hub knows, so it goes first.
    EventHub m_hub;
    PageFiles m_pages;
    ArtworkFiles m_artwork;
    AccessGuard m_guard;
    ApiRouter m_router;
    HttpServer m_server;
};
