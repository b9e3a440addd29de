#pragma once

#include <optional>

#include <QByteArray>
#include <QStringList>

#include "HttpMessages.h"
#include "WrongTokens.h"

// Who may ask: looks at the head of every request before anything else does, also before its body
// is kept. Owned by the worker, on its thread. A request that is not let in gets the answer that
// says why; nothing here fails otherwise.
//
//   the head's size                431 HeadersTooLarge
//   a head with two readings       400 Malformed
//   Host                           403 Forbidden: a page that made its own name lead here
//   Origin, Sec-Fetch-Site         403 Forbidden: a page from elsewhere
//   the token, for what is no file of the page: 401 Unauthorized
//   after many wrong tokens of an address, each further one and any login: 429 TooManyAttempts.
//     What carries the token or the cookie goes on, so that a stranger at the same address (behind
//     one proxy) locks out no client that is in.
class AccessGuard {
public:
    // `names`: by which the device may be called besides the loopback's and the address in use.
    // `token`: empty when none is wanted.
    AccessGuard(const QStringList& names, const QByteArray& token,
                const WrongTokens::Limits& limits = {});

    // The port in use, which is part of the cookie's name: a browser shares cookies between ports.
    void setPort(quint16 port);

    // Nothing when the request may come in.
    std::optional<HttpResponse> refusal(const HttpRequest& request);

    bool wantsToken() const { return !m_tokenDigest.isEmpty(); }
    // True when a login brings the token; a wrong one counts against its sender.
    bool tryLogin(const HttpRequest& request, const QByteArray& token);
    // The cookie that stands for the token from now on. It cannot be turned back into the token,
    // and is void as soon as the token is another one.
    QByteArray cookieHeader() const;

    static constexpr char LoginPath[] = "/api/login";

private:
    bool isOwnHost(const HttpRequest& request) const;
    bool isToken(const QByteArray& text) const;
    std::optional<HttpResponse> refusalOfCredentials(const HttpRequest& request);
    bool hasToken(const HttpRequest& request) const;
    bool hasCookie(const HttpRequest& request) const;

    QByteArrayList m_names;
    QByteArray m_tokenDigest;
    QByteArray m_cookieName;
    QByteArray m_cookieValue;
    QByteArray m_cookieDigest;
    WrongTokens m_wrongTokens;
};
