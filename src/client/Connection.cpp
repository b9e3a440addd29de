#include "Connection.h"

#include <QFile>

#include "Arguments.h"
#include "ClientFailure.h"

namespace {

const QString DefaultUrl = QStringLiteral("http://127.0.0.1:8080");
const QString UrlOption = QStringLiteral("url");
const QString TokenFileOption = QStringLiteral("token-file");
constexpr qint64 MaxTokenBytes = 1024;

// `from` says where the text stood, when that is not the command line.
QUrl parseUrl(const QString& text, const QString& from = {}) {
    QUrl url(text);
    if (!url.isValid() || url.scheme() != QLatin1String("http") || url.host().isEmpty())
        throw ClientFailure::usage(QStringLiteral("\"%1\"%2 is no http URL").arg(text, from));
    while (url.path().endsWith(QLatin1Char('/')))
        url.setPath(url.path().chopped(1));
    return url;
}

// From --token-file, from the file that ORVO_TOKEN_FILE names, or ORVO_TOKEN itself.
QByteArray readToken(const Arguments& arguments) {
    const QString file = arguments.has(TokenFileOption) ? arguments.value(TokenFileOption)
                                                        : qEnvironmentVariable("ORVO_TOKEN_FILE");
    if (file.isEmpty() && !arguments.has(TokenFileOption))
        return qgetenv("ORVO_TOKEN").trimmed();
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        throw ClientFailure::usage(
            QStringLiteral("the token file %1 cannot be read: %2").arg(file, opened.errorString()));
    const QByteArray token = opened.read(MaxTokenBytes).trimmed();
    for (const char c : token) {
        if (c <= ' ' || c > '~')
            throw ClientFailure::usage(QStringLiteral("the file %1 holds no token").arg(file));
    }
    return token;
}

} // namespace

const QStringList& Connection::options() {
    static const QStringList names = {UrlOption, TokenFileOption};
    return names;
}

Connection Connection::of(const Arguments& arguments) {
    if (arguments.has(UrlOption))
        return {parseUrl(arguments.value(UrlOption)), readToken(arguments)};
    const QString named = qEnvironmentVariable("ORVO_URL");
    return {named.isEmpty() ? QUrl(DefaultUrl) : parseUrl(named, QStringLiteral(" in ORVO_URL")),
            readToken(arguments)};
}
