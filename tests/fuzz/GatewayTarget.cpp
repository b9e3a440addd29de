#include <algorithm>

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QSet>

#include "AccessGuard.h"
#include "ApiRouter.h"
#include "ArtworkFiles.h"
#include "EventHub.h"
#include "ExchangeProbe.h"
#include "FuzzTarget.h"
#include "PageFiles.h"
#include "World.h"

namespace {

constexpr int MostRequests = 16;
constexpr int CommentMs = 15000;

void requireFine(const HttpExchange& exchange, const HttpResponse& answer) {
    static const QSet<int> statuses = {200, 304, 400, 401, 403, 404, 405,
                                       409, 413, 422, 429, 431, 503, 504};
    const QString what = QString::fromUtf8(exchange.request().method) + ' ' +
                         exchange.request().path + ' ' + QString::fromUtf8(answer.body.left(200));
    Fuzz::require(statuses.contains(answer.status), "an unknown status: " + what);
    Fuzz::require(!answer.body.contains(World::instance().secret()),
                  "a file outside was read: " + what);
    for (const auto& header : answer.headers)
        Fuzz::require(!header.second.contains('\n') && !header.second.contains('\r'),
                      "a header of two lines: " + what);
    if (answer.contentType != "application/json")
        return;
    Fuzz::require(answer.status != 200 ||
                      answer.body.size() <= World::instance().apiLimits().answerBytes,
                  "an answer over the limit: " + what);
    QJsonParseError error;
    Fuzz::require(QJsonDocument::fromJson(answer.body, &error).isObject(),
                  "an answer that is no JSON object: " + what + ' ' + error.errorString());
    Fuzz::require(QString::fromUtf8(answer.body).toUtf8() == answer.body,
                  "an answer that is no UTF-8: " + what);
}

void requireFineStream(const QByteArray& text) {
    for (const QByteArray& line : text.split('\n')) {
        const bool known = line.isEmpty() || line.startsWith(':') || line.startsWith("id: ") ||
                           line.startsWith("event: ") || line.startsWith("data: ") ||
                           line.startsWith("retry: ");
        Fuzz::require(known, "a line that is no event: " + QString::fromUtf8(line));
        if (line.startsWith("data: "))
            Fuzz::require(QJsonDocument::fromJson(line.mid(6)).isObject(),
                          "an event that is no JSON: " + QString::fromUtf8(line));
    }
}

// Requests as they come in, divided by lines of "---": each is answered, in the form that is
// promised, at the latest when every other module has answered or let go; nothing outside the
// folders is read or written, and the store is sound.
// "@MUSIC@" in it is the music folder.
void tryRequests(World& world, const QByteArray& text) {
    const QByteArray input = QByteArray(text).replace("@MUSIC@", world.musicFolder().toUtf8());
    bool commands = false;
    bool values = false;
    {
        EventHub hub(CMRoot()->events(), {}, CommentMs);
        const PageFiles pages(world.pageFolder());
        const ArtworkFiles artwork(world.musicFolder(), QString());
        // With a token for some inputs: the guard is tried open and closed.
        AccessGuard guard({}, input.contains("Authorization: ") ? "secret-token" : QByteArray());
        ApiRouter router(&hub, &pages, &artwork, &guard, world.apiLimits());

        QVector<std::shared_ptr<HttpExchange>> exchanges;
        int at = 0;
        while (at >= 0 && exchanges.size() < MostRequests) {
            const int end = input.indexOf("\n---\n", at);
            exchanges.append(ExchangeProbe::read(input.mid(at, end < 0 ? -1 : end - at)));
            at = end < 0 ? -1 : end + 5;
            commands = commands || exchanges.last()->request().method == "POST";
            values = values || exchanges.last()->request().method == "PUT";
            if (const auto refusal = guard.refusal(exchanges.last()->request()))
                exchanges.last()->respond(*refusal);
            else
                router.handle(exchanges.last());
            world.handleEvents();
        }
        // Work on a great many items takes several turns of the event loop.
        const QDeadlineTimer patience(world.apiLimits().answerMs);
        const auto isAnswered = [](const auto& exchange) {
            return ExchangeProbe::answer(*exchange) != nullptr;
        };
        do {
            world.settle();
        } while (!std::all_of(exchanges.cbegin(), exchanges.cend(), isAnswered) &&
                 !patience.hasExpired());
        for (const auto& exchange : exchanges) {
            const HttpResponse* answer = ExchangeProbe::answer(*exchange);
            Fuzz::require(answer != nullptr, "no answer: " + QString::fromUtf8(input));
            requireFine(*exchange, *answer);
            requireFineStream(ExchangeProbe::stream(*exchange));
        }
    }
    if (!commands && !values)
        return;
    world.requireInvariants(false);
    world.requireSameFiles();
    world.reset(0, values);
}

} // namespace

void Fuzz::gateway(const QByteArray& input) {
    World::instance().setLimits(World::Limits::Small);
    tryRequests(World::instance(), input);
}

void Fuzz::gatewayWithDefaultLimits(const QByteArray& input) {
    World::instance().setLimits(World::Limits::Default);
    tryRequests(World::instance(), input);
}
