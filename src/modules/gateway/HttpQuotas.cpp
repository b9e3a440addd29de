#include "HttpQuotas.h"

#include "ApiError.h"

namespace {

using Kind = ApiError::Kind;

HttpResponse refusedForNow(Kind kind, const QString& message) {
    HttpResponse refusal = ApiError::response(kind, message);
    refusal.headers.append({"Retry-After", QByteArray("1")});
    return refusal;
}

} // namespace

std::optional<HttpResponse> HttpQuotas::holdBody(Share& share, const HttpRequest& request,
                                                 qint64 size, qint64 maxBody) {
    if (size <= share.bodyBytes)
        return std::nullopt;
    if (maxBody == 0)
        return ApiError::response(Kind::TooLarge,
                                  QStringLiteral("%1 %2 takes no body.")
                                      .arg(QString::fromLatin1(request.method), request.path));
    if (size > maxBody)
        return ApiError::response(Kind::TooLarge,
                                  QStringLiteral("The body is larger than %1 bytes.").arg(maxBody));
    const qint64 others = m_bodiesBytes - share.bodyBytes;
    // A single body always fits.
    const qint64 space = others > 0 ? m_limits.bodiesBytes - others : maxBody;
    if (size > space)
        return refusedForNow(Kind::TooManyBodies,
                             QStringLiteral("Too much is being sent at the moment."));
    // Twice what there was, where that fits: a body that grows is moved a few times only.
    share.bodyBytes = qMin(qMax(size, 2 * share.bodyBytes), qMin(space, maxBody));
    m_bodiesBytes = others + share.bodyBytes;
    return std::nullopt;
}

void HttpQuotas::dropBody(Share& share) {
    m_bodiesBytes -= share.bodyBytes;
    share.bodyBytes = 0;
}

void HttpQuotas::holdAnswer(Share& share, HttpResponse& answer) {
    // A single answer always fits.
    const bool fits =
        m_answersBytes == 0 || m_answersBytes + answer.body.size() <= m_limits.answersBytes;
    if (!fits || (answer.file && m_files >= m_limits.files))
        answer = refusedForNow(Kind::TooManyAnswers,
                               QStringLiteral("Too many answers wait to be taken."));
    share.answerBytes = answer.body.size();
    share.sendsFile = bool(answer.file);
    m_answersBytes += share.answerBytes;
    m_files += share.sendsFile;
}

void HttpQuotas::dropAnswer(Share& share) {
    m_answersBytes -= share.answerBytes;
    m_files -= share.sendsFile;
    share.answerBytes = 0;
    share.sendsFile = false;
}

std::optional<HttpResponse> HttpQuotas::countForwarded(Share& share, const IpAddress& client) {
    share.client = client;
    if (++m_forwarded[client] <= m_limits.requestsPerClient)
        return std::nullopt;
    return ApiError::response(Kind::TooManyRequests,
                              QStringLiteral("%1 has too many requests under way.")
                                  .arg(QString::fromLatin1(client.toString())));
}

void HttpQuotas::uncountForwarded(Share& share) {
    if (!share.client)
        return;
    const auto count = m_forwarded.find(*share.client);
    if (--*count == 0)
        m_forwarded.erase(count);
    share.client.reset();
}
