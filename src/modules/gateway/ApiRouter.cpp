#include "ApiRouter.h"

#include <limits>

#include "AccessGuard.h"
#include "ApiError.h"
#include "ArtworkFiles.h"
#include "CMRootWorker.h"
#include "EventHub.h"
#include "PageFiles.h"
#include "PathNames.h"
#include "PendingAnswer.h"

namespace {

// How many values one reader of the events can watch.
constexpr int MaxWatched = 16;
// How many roles a row can be asked for: there are about a dozen, and every row has a place for
// each.
constexpr int MaxRoles = 64;
// Of a login's body; a token has at most 512 characters.
constexpr int MaxLoginBytes = 4096;
constexpr int AnySize = std::numeric_limits<int>::max();

HttpResponse jsonResponse(const QByteArray& text) {
    return {200, "application/json", text, {{"Cache-Control", "no-store"}}};
}

HttpResponse jsonResponse(JsonWriter* json) {
    return json->isFull() ? ApiError::response(ApiError::Kind::AnswerTooLarge,
                                               QStringLiteral("Ask for fewer rows."))
                          : jsonResponse(json->text());
}

HttpResponse malformed(const QString& message) {
    return ApiError::response(ApiError::Kind::Malformed, message);
}

// The path a request is about. False when there is none, with the reason.
bool readPath(const QVariant& text, CMPath* path, QString* reason) {
    if (!text.isValid()) {
        *reason = QStringLiteral("\"path\" is missing.");
        return false;
    }
    *path = text.userType() == QMetaType::QString ? CMPath(text.toString()) : CMPath();
    if (!path->isEmpty())
        return true;
    *reason = QStringLiteral("\"path\" must be a path such as \"playlists:root\".");
    return false;
}

bool readQueryPath(const HttpRequest& request, CMPath* path, QString* reason) {
    const auto text = request.parameter(QStringLiteral("path"));
    return readPath(text ? QVariant(*text) : QVariant(), path, reason);
}

// The body of a writing request: {"path": P, "value": …}. False, and answered, when it is none.
bool readBody(const std::shared_ptr<HttpExchange>& exchange, int maxValues, CMPath* path,
              QVariant* value) {
    const QString key = QStringLiteral("value");
    QVariantHash body;
    QString reason;
    bool isWellFormed =
        JsonReader::readObject(exchange->request().body, &body, &reason, maxValues) &&
        readPath(body.value(QStringLiteral("path")), path, &reason);
    if (isWellFormed && !body.contains(key)) {
        isWellFormed = false;
        reason = QStringLiteral("\"value\" is missing.");
    }
    if (!isWellFormed)
        exchange->respond(malformed(reason));
    *value = body.value(key);
    return isWellFormed;
}

// A row number: absent it stays what it is. False when it is no whole number from 0 on.
bool readRowNumber(const HttpRequest& request, const QString& name, int* row, QString* reason) {
    const auto text = request.parameter(name);
    if (!text)
        return true;
    bool ok = !text->isEmpty();
    for (const QChar c : *text)
        ok = ok && c >= QLatin1Char('0') && c <= QLatin1Char('9');
    const int number = ok ? text->toInt(&ok) : 0;
    if (ok)
        *row = number;
    else
        *reason = QStringLiteral("\"%1\" must be a whole number from 0 to %2.")
                      .arg(name)
                      .arg(CMGetRowsRequest::LastRow);
    return ok;
}

QStringList readRoleNames(const HttpRequest& request) {
    QStringList names = request.parameter(QStringLiteral("roles"))
                            .value_or(QString())
                            .split(QLatin1Char(','), Qt::SkipEmptyParts);
    names.removeDuplicates();
    return names.isEmpty() ? OrvoRoles::defaultNames() : names;
}

// The row's values stand in the order of the role names; a value that is not there is null.
HttpResponse renderRows(const OrvoRowsRoles& answer, const QStringList& roleNames, int maxBytes) {
    JsonWriter json(maxBytes);
    json.beginObject();
    json.name(QStringLiteral("title"));
    json.value(answer.roles().title().toString());
    json.name(QStringLiteral("rowsCount"));
    json.value(qint64(answer.rowsCount()));
    if (answer.containsRevision()) {
        json.name(QStringLiteral("revision"));
        json.value(answer.revision());
    }
    if (answer.containsLastPlayedIndex()) {
        json.name(QStringLiteral("lastPlayedIndex"));
        json.value(qint64(answer.lastPlayedIndex()));
    }
    if (answer.containsResumeIndex()) {
        json.name(QStringLiteral("resumeIndex"));
        json.value(qint64(answer.resumeIndex()));
    }
    json.name(QStringLiteral("roles"));
    json.value(answer.roles().toVariant());
    json.name(QStringLiteral("rows"));
    json.beginList();
    const QVariantList rows = answer.rows();
    for (const QVariant& row : rows) {
        if (json.isFull())
            break;
        json.beginObject();
        const QVariantList values = row.toList();
        for (int i = 0; i < roleNames.size(); ++i) {
            json.name(roleNames.at(i));
            if (i < values.size())
                json.value(values.at(i));
            else
                json.null();
        }
        json.endObject();
    }
    json.endList();
    json.endObject();
    return jsonResponse(&json);
}

HttpResponse renderMember(const QString& name, const QVariant& value, int maxBytes) {
    JsonWriter json(maxBytes);
    json.beginObject();
    json.name(name);
    json.value(value);
    json.endObject();
    return jsonResponse(&json);
}

bool isData(const QVariant& value) {
    return value.userType() == QMetaType::QVariantHash ||
           value.userType() == QMetaType::QVariantList;
}

} // namespace

const QVector<ApiRouter::Route>& ApiRouter::routes() {
    static const QVector<Route> table = {
        {"GET", "/api/paths", &ApiRouter::getPaths, {.answersHead = true}},
        {"GET", "/api/modules", &ApiRouter::getModules, {.answersHead = true}},
        {"GET", "/api/rows", &ApiRouter::getRows, {.answersHead = true}},
        {"POST", "/api/data", &ApiRouter::postData, {.maxBody = AnySize}},
        {"GET", "/api/value", &ApiRouter::getValue, {.answersHead = true}},
        {"PUT", "/api/value", &ApiRouter::putValue, {.maxBody = AnySize}},
        {"GET", "/api/events", &ApiRouter::getEvents},
        {"GET", "/api/artwork", &ApiRouter::getArtwork, {.answersHead = true}},
        {"POST", AccessGuard::LoginPath, &ApiRouter::postLogin, {.maxBody = MaxLoginBytes}},
    };
    return table;
}

int ApiRouter::maxBody(const HttpRequest& request) {
    for (const Route& route : routes()) {
        if (request.method == route.method && request.path == QLatin1String(route.path))
            return route.options.maxBody;
    }
    return 0;
}

void ApiRouter::handle(const Exchange& exchange) {
    const HttpRequest& request = exchange->request();
    if (request.illegalText) {
        exchange->respond(malformed(QStringLiteral("The address is no text in UTF-8.")));
        return;
    }
    QStringList allowed;
    for (const Route& route : routes()) {
        if (request.path != QLatin1String(route.path))
            continue;
        if (request.method == route.method ||
            (route.options.answersHead && request.method == "HEAD")) {
            (this->*route.handler)(exchange);
            return;
        }
        allowed.append(QString::fromLatin1(route.method));
        if (route.options.answersHead)
            allowed.append(QStringLiteral("HEAD"));
    }
    refuseUnrouted(exchange, allowed);
}

void ApiRouter::refuseUnrouted(const Exchange& exchange, const QStringList& allowed) {
    const HttpRequest& request = exchange->request();
    QStringList methods = allowed;
    if (methods.isEmpty() && !request.path.startsWith(QLatin1String("/api/"))) {
        if (const auto page = m_pages->find(request.path, request.ifNoneMatch)) {
            if (request.method == "GET" || request.method == "HEAD") {
                exchange->respond(*page);
                return;
            }
            methods = QStringList{QStringLiteral("GET"), QStringLiteral("HEAD")};
        }
    }
    if (methods.isEmpty()) {
        exchange->respond(
            ApiError::response(ApiError::Kind::NoSuchResource,
                               QStringLiteral("There is no %1 here.").arg(request.path)));
        return;
    }
    const QString allow = methods.join(QStringLiteral(", "));
    HttpResponse response = ApiError::response(
        ApiError::Kind::MethodNotAllowed, QStringLiteral("%1 takes %2.").arg(request.path, allow));
    response.headers.append({"Allow", allow.toLatin1()});
    exchange->respond(response);
}

void ApiRouter::getPaths(const Exchange& exchange) {
    exchange->respond(jsonResponse(PathNames::json()));
}

void ApiRouter::getModules(const Exchange& exchange) {
    exchange->respond(
        renderMember(QStringLiteral("modules"), CMRoot()->prefixes(), m_limits.answerBytes));
}

void ApiRouter::getRows(const Exchange& exchange) {
    const HttpRequest& request = exchange->request();
    CMPath path;
    QString reason;
    int from = 0;
    int to = CMGetRowsRequest::LastRow;
    if (!readQueryPath(request, &path, &reason) ||
        !readRowNumber(request, QStringLiteral("from"), &from, &reason) ||
        !readRowNumber(request, QStringLiteral("to"), &to, &reason)) {
        exchange->respond(malformed(reason));
        return;
    }
    const QStringList roleNames = readRoleNames(request);
    if (roleNames.size() > MaxRoles) {
        exchange->respond(
            malformed(QStringLiteral("\"roles\" must be at most %1 names.").arg(MaxRoles)));
        return;
    }
    PendingAnswer::request<CMReplyData<OrvoRowsRoles>>(
        exchange, m_limits.answerMs,
        [&](const CMReplyData<OrvoRowsRoles>& reply) {
            CMRoot()->getRowsRequest(CMGetRowsRequest(path, from, to, roleNames, reply));
        },
        [roleNames, maxBytes = m_limits.answerBytes](const OrvoRowsRoles& answer) {
            return renderRows(answer, roleNames, maxBytes);
        });
}

void ApiRouter::postData(const Exchange& exchange) {
    CMPath path;
    QVariant value;
    if (!readBody(exchange, m_limits.bodyValues, &path, &value))
        return;
    // A module may take a set-data request without data for a programming error: it never gets one
    // from outside.
    if (!isData(value)) {
        exchange->respond(malformed(QStringLiteral("\"value\" must be an object or a list.")));
        return;
    }
    PendingAnswer::request<CMReply<QVariant>>(
        exchange, m_limits.answerMs,
        [&](const CMReply<QVariant>& reply) {
            CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
        },
        [maxBytes = m_limits.answerBytes](const QVariant& result) {
            return renderMember(QStringLiteral("result"), result, maxBytes);
        });
}

void ApiRouter::getValue(const Exchange& exchange) {
    CMPath path;
    QString reason;
    if (!readQueryPath(exchange->request(), &path, &reason)) {
        exchange->respond(malformed(reason));
        return;
    }
    const QVariant value = CMRoot()->getValue(path);
    exchange->respond(
        value.isValid() ? renderMember(QStringLiteral("value"), value, m_limits.answerBytes)
                        : ApiError::response(CMError(
                              CMError::NoSuchNode(),
                              TrString("ApiRouter", "There is no value at %1.", {path.toString()}),
                              CMError::DefaultTitle())));
}

void ApiRouter::putValue(const Exchange& exchange) {
    CMPath path;
    QVariant value;
    if (!readBody(exchange, m_limits.bodyValues, &path, &value))
        return;
    PendingAnswer::request<CMVoidReply>(
        exchange, m_limits.answerMs,
        [&](const CMVoidReply& reply) { CMRoot()->setValue(path, value, reply); },
        [path, maxBytes = m_limits.answerBytes] {
            return renderMember(QStringLiteral("value"), CMRoot()->getValue(path), maxBytes);
        });
}

void ApiRouter::getEvents(const Exchange& exchange) {
    const HttpRequest& request = exchange->request();
    // The header is newer: a browser sends it with every reconnection, beside the address it began
    // with.
    const QString text = request.lastEventId.isEmpty()
                             ? request.parameter(QStringLiteral("lastEventId")).value_or(QString())
                             : QString::fromLatin1(request.lastEventId);
    std::optional<quint64> lastEventId;
    if (!text.isEmpty()) {
        // What is no number is no id of this run either: such a reader is told to read everything
        // again.
        bool ok = false;
        const quint64 number = text.toULongLong(&ok);
        lastEventId = ok ? number : EventHistory::NoId;
    }
    QVector<CMPath> watched;
    for (const auto& parameter : request.query) {
        if (parameter.first != QLatin1String("watch"))
            continue;
        const CMPath path(parameter.second);
        if (path.isEmpty() || watched.size() == MaxWatched) {
            exchange->respond(
                malformed(QStringLiteral("\"watch\" must be the path of a value, at most %1 times.")
                              .arg(MaxWatched)));
            return;
        }
        watched.append(path);
    }
    if (!m_hub->serve(exchange, lastEventId, watched))
        exchange->respond(ApiError::response(
            ApiError::Kind::TooManyReaders,
            QStringLiteral("%1 readers are connected.").arg(m_hub->maxStreams())));
}

void ApiRouter::getArtwork(const Exchange& exchange) {
    const HttpRequest& request = exchange->request();
    const auto uri = request.parameter(QStringLiteral("uri"));
    if (!uri) {
        exchange->respond(malformed(QStringLiteral("\"uri\" is missing.")));
        return;
    }
    const auto picture = m_artwork->find(*uri, request.ifNoneMatch);
    exchange->respond(picture ? *picture
                              : ApiError::response(ApiError::Kind::NoSuchResource,
                                                   QStringLiteral("There is no such picture.")));
}

// The page cannot send a header with its pictures and its stream, so it trades the token for a
// cookie.
void ApiRouter::postLogin(const Exchange& exchange) {
    QVariantHash body;
    QString reason;
    if (!JsonReader::readObject(exchange->request().body, &body, &reason, m_limits.bodyValues)) {
        exchange->respond(malformed(reason));
        return;
    }
    if (!m_guard->wantsToken()) {
        exchange->respond(jsonResponse("{}"));
        return;
    }
    // Of many logins at once the wrong ones count before the next is looked at.
    if (const auto refusal = m_guard->refusal(exchange->request())) {
        exchange->respond(*refusal);
        return;
    }
    const QByteArray token = body.value(QStringLiteral("token")).toString().toUtf8();
    if (!m_guard->tryLogin(exchange->request(), token)) {
        exchange->respond(ApiError::response(ApiError::Kind::Unauthorized,
                                             QStringLiteral("This is not the device's token.")));
        return;
    }
    HttpResponse response = jsonResponse("{}");
    response.headers.append({"Set-Cookie", m_guard->cookieHeader()});
    exchange->respond(response);
}
