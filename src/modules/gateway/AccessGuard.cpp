#include "AccessGuard.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include "ApiError.h"

namespace {

// As long as browsers keep a cookie at most.
constexpr char CookieLife[] = "34560000";

QByteArray digestOf(const QByteArray& text) {
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256);
}

// Takes the same time whatever the two have in common: they are digests, all of one length.
bool isSameDigest(const QByteArray& a, const QByteArray& b) {
    if (a.size() != b.size())
        return false;
    volatile unsigned char difference = 0;
    for (int i = 0; i < a.size(); ++i)
        difference = static_cast<unsigned char>(difference | (a[i] ^ b[i]));
    return difference == 0;
}

// "name:8080" becomes "name", "[::1]:8080" becomes "::1"; nothing for what is no host.
QByteArray hostName(const QByteArray& host) {
    const bool bracketed = host.startsWith('[');
    const int nameAt = bracketed ? 1 : 0;
    int end = host.indexOf(bracketed ? ']' : ':');
    if (end < 0 && bracketed)
        return {};
    if (end < 0)
        end = host.size();
    const QByteArray name = host.mid(nameAt, end - nameAt);
    const int portAt = bracketed ? end + 1 : end;
    if (portAt == host.size())
        return name;
    if (host.at(portAt) != ':')
        return {};
    for (int i = portAt + 1; i < host.size(); ++i) {
        if (host.at(i) < '0' || host.at(i) > '9')
            return {};
    }
    return name;
}

bool isLoopback(const QByteArray& name) {
    if (name == "localhost")
        return true;
    in_addr v4{};
    if (inet_pton(AF_INET, name.constData(), &v4) == 1)
        return (ntohl(v4.s_addr) >> 24) == IN_LOOPBACKNET;
    in6_addr v6{};
    return inet_pton(AF_INET6, name.constData(), &v6) == 1 && IN6_IS_ADDR_LOOPBACK(&v6);
}

bool isSameAddress(const QByteArray& name, const IpAddress& address) {
    return IpAddress::parse(name) == address;
}

// A browser that says where a request comes from has to name this page. A link elsewhere that leads
// to the page is followed: it only opens what the address bar would open.
bool isFromElsewhere(const HttpRequest& request) {
    const QByteArray host = request.host.toLower();
    for (const QByteArray& origin : request.origins) {
        const QByteArray text = origin.toLower();
        if (text != "http://" + host && text != "https://" + host)
            return true;
    }
    const QByteArray& site = request.fetchSite;
    if (site.isEmpty() || site == "same-origin" || site == "none")
        return false;
    const bool followsLink = request.fetchMode == "navigate" && request.fetchDest == "document" &&
                             (request.method == "GET" || request.method == "HEAD");
    return !followsLink || request.isForApi();
}

HttpResponse unauthorized(const QString& message) {
    HttpResponse response = ApiError::response(ApiError::Kind::Unauthorized, message);
    response.headers.append({"WWW-Authenticate", QByteArray("Bearer")});
    return response;
}

HttpResponse tooManyAttempts(const IpAddress& address, int seconds) {
    HttpResponse response =
        ApiError::response(ApiError::Kind::TooManyAttempts,
                           QStringLiteral("Too many wrong tokens came from %1. Try again in %2 s.")
                               .arg(QString::fromLatin1(address.toString()))
                               .arg(seconds));
    response.headers.append({"Retry-After", QByteArray::number(seconds)});
    return response;
}

} // namespace

AccessGuard::AccessGuard(const QStringList& names, const QByteArray& token,
                         const WrongTokens::Limits& limits)
    : m_wrongTokens(limits) {
    for (const QString& name : names)
        m_names.append(name.trimmed().toLower().toUtf8());
    if (token.isEmpty())
        return;
    m_tokenDigest = digestOf(token);
    m_cookieValue =
        QMessageAuthenticationCode::hash("the page's cookie", token, QCryptographicHash::Sha256)
            .toHex();
    m_cookieDigest = digestOf(m_cookieValue);
    setPort(0);
}

void AccessGuard::setPort(quint16 port) {
    m_cookieName = "orvo-" + QByteArray::number(port);
}

std::optional<HttpResponse> AccessGuard::refusal(const HttpRequest& request) {
    using Kind = ApiError::Kind;
    if (request.headTooLarge)
        return ApiError::response(
            Kind::HeadersTooLarge,
            QStringLiteral("The head of the request is larger than this device takes."));
    if (request.headIsUnclear)
        return ApiError::response(
            Kind::Malformed, QStringLiteral("The head of the request could be read in two ways."));
    if (!isOwnHost(request))
        return ApiError::response(Kind::Forbidden,
                                  QStringLiteral("This device is not called \"%1\".")
                                      .arg(QString::fromLatin1(request.host)));
    if (isFromElsewhere(request))
        return ApiError::response(Kind::Forbidden,
                                  QStringLiteral("Pages from elsewhere have no access."));
    if (wantsToken() && request.isForApi())
        return refusalOfCredentials(request);
    return std::nullopt;
}

std::optional<HttpResponse> AccessGuard::refusalOfCredentials(const HttpRequest& request) {
    const int seconds = m_wrongTokens.blockedSeconds(request.client);
    if (request.path == QLatin1String(LoginPath)) {
        if (seconds > 0)
            return tooManyAttempts(request.client, seconds);
        return std::nullopt;
    }
    if (request.authorization.isEmpty()) {
        if (hasCookie(request))
            return std::nullopt;
        return unauthorized(QStringLiteral("This device wants its token."));
    }
    if (hasToken(request))
        return std::nullopt;
    if (seconds > 0)
        return tooManyAttempts(request.client, seconds);
    m_wrongTokens.note(request.client);
    return unauthorized(QStringLiteral("This is not the device's token."));
}

bool AccessGuard::isOwnHost(const HttpRequest& request) const {
    // Two of them may mean two things to two readers.
    if (request.hostCount != 1)
        return false;
    const QByteArray name = hostName(request.host).toLower();
    return !name.isEmpty() && (isLoopback(name) || isSameAddress(name, request.localAddress) ||
                               m_names.contains(name));
}

bool AccessGuard::hasToken(const HttpRequest& request) const {
    constexpr char Scheme[] = "bearer ";
    constexpr int SchemeSize = sizeof Scheme - 1;
    return request.authorization.left(SchemeSize).toLower() == Scheme &&
           isToken(request.authorization.mid(SchemeSize).trimmed());
}

bool AccessGuard::hasCookie(const HttpRequest& request) const {
    const QByteArray start = m_cookieName + '=';
    for (const QByteArray& part : request.cookie.split(';')) {
        const QByteArray cookie = part.trimmed();
        if (cookie.startsWith(start) &&
            isSameDigest(digestOf(cookie.mid(start.size())), m_cookieDigest))
            return true;
    }
    return false;
}

bool AccessGuard::tryLogin(const HttpRequest& request, const QByteArray& token) {
    if (isToken(token))
        return true;
    m_wrongTokens.note(request.client);
    return false;
}

bool AccessGuard::isToken(const QByteArray& text) const {
    return wantsToken() && isSameDigest(digestOf(text), m_tokenDigest);
}

QByteArray AccessGuard::cookieHeader() const {
    return m_cookieName + '=' + m_cookieValue + "; Path=/api; Max-Age=" + CookieLife +
           "; HttpOnly; SameSite=Strict";
}
