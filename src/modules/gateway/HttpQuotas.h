#pragma once

#include <optional>

#include <QHash>

#include "HttpMessages.h"

// What all exchanges under way may hold together: their bodies, the answers that wait to be taken,
// open files, and the requests of one client behind a trusted proxy. Each exchange keeps its share,
// which is given back in full before it goes. Owned by the server, on its thread. What does not fit
// gets its refusal as a result.
class HttpQuotas {
public:
    struct Limits {
        qint64 bodiesBytes = 0;
        qint64 answersBytes = 0;
        int files = 0;
        int requestsPerClient = 0; // through proxies
    };
    // What one exchange holds of the sums.
    struct Share {
        qint64 bodyBytes = 0;
        qint64 answerBytes = 0;
        bool sendsFile = false;
        std::optional<IpAddress> client; // that it is counted for
    };

    explicit HttpQuotas(const Limits& limits) : m_limits(limits) {}

    // Lets the share grow to a body of that size, of at most `maxBody`. A refusal leaves it as it
    // is.
    std::optional<HttpResponse> holdBody(Share& share, const HttpRequest& request, qint64 size,
                                         qint64 maxBody);
    void dropBody(Share& share);
    // Counts the answer until it is taken. One too many becomes a refusal.
    void holdAnswer(Share& share, HttpResponse& answer);
    void dropAnswer(Share& share);
    // Counts the request either way, until it is uncounted.
    std::optional<HttpResponse> countForwarded(Share& share, const IpAddress& client);
    void uncountForwarded(Share& share);

private:
    Limits m_limits;
    qint64 m_bodiesBytes = 0;
    qint64 m_answersBytes = 0;
    int m_files = 0;
    QHash<IpAddress, int> m_forwarded; // the requests under way of each client
};
