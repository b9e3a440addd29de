#include "ApiError.h"

#include "JsonWriter.h"

namespace {

struct Row {
    ApiError::Kind kind;
    int status;
    const char* name;
    const char* title;
};

constexpr Row Rows[] = {
    {ApiError::Kind::Malformed, 400, "Malformed", "Malformed request"},
    {ApiError::Kind::Unauthorized, 401, "Unauthorized", "Token needed"},
    {ApiError::Kind::Forbidden, 403, "Forbidden", "No access"},
    {ApiError::Kind::NoSuchResource, 404, "NoSuchResource", "Not found"},
    {ApiError::Kind::MethodNotAllowed, 405, "MethodNotAllowed", "Method not allowed"},
    {ApiError::Kind::TooLarge, 413, "TooLarge", "Request too large"},
    {ApiError::Kind::AnswerTooLarge, 422, "AnswerTooLarge", "Answer too large"},
    {ApiError::Kind::TooManyAttempts, 429, "TooManyAttempts", "Too many wrong tokens"},
    {ApiError::Kind::TooManyRequests, 429, "TooManyRequests", "Too many requests"},
    {ApiError::Kind::HeadersTooLarge, 431, "HeadersTooLarge", "Request head too large"},
    {ApiError::Kind::TooManyReaders, 503, "TooManyReaders", "Too many readers"},
    {ApiError::Kind::TooManyBodies, 503, "TooManyBodies", "Too many requests"},
    {ApiError::Kind::TooManyAnswers, 503, "TooManyAnswers", "Too many answers"},
    {ApiError::Kind::Timeout, 504, "Timeout", "No answer"},
};

constexpr int NotFound = 404;
constexpr int Conflict = 409;
constexpr int Refused = 422;

HttpResponse build(int status, const QString& name, const QString& title, const QString& message) {
    JsonWriter json;
    json.beginObject();
    json.name(QStringLiteral("error"));
    json.beginObject();
    json.name(QStringLiteral("name"));
    json.value(name);
    json.name(QStringLiteral("title"));
    json.value(title);
    json.name(QStringLiteral("message"));
    json.value(message);
    json.endObject();
    json.endObject();
    return {status, "application/json", json.text(), {{"Cache-Control", "no-store"}}};
}

} // namespace

HttpResponse ApiError::response(Kind kind, const QString& message) {
    for (const Row& row : Rows) {
        if (row.kind == kind)
            return build(row.status, QString::fromLatin1(row.name), QString::fromLatin1(row.title),
                         message);
    }
    Q_UNREACHABLE();
}

HttpResponse ApiError::response(const CMError& error) {
    const int status = error.name() == CMError::NoSuchNode() ? NotFound
                       : error.name() == CMError::Conflict() ? Conflict
                                                             : Refused;
    return build(status, error.name(), error.title().toString(), error.message().toString());
}
