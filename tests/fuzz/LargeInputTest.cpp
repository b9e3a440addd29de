#include <algorithm>
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "FuzzTarget.h"
#include "HttpServer.h"
#include "QuietLog.h"

// Requests as large as the HTTP server lets through. A fuzzer's inputs are small, so what costs far
// more than its size would stay hidden from it.

namespace {

constexpr int HeaderBytes = 32 * 1024;

struct Large {
    const char* what;
    QByteArray before; // a request for each line but the last one, which is the body's begin
    QByteArray piece;
    QByteArray after;
};

QByteArray post(const QByteArray& path, const QByteArray& value) {
    return "POST /api/data\n\n{\"path\":\"" + path + "\",\"value\":" + value;
}

// As large as an item may be; it becomes playlists:item/4.
const QByteArray LargeItem = post("playlists:pl/addExternalItems",
                                  R"({"plid":1,"items":[{"orvoRoles":"{\"type\":3,\"title\":\")") +
                             QByteArray(250'000, 'x') + R"(\"}"}]}})" + "\n---\n";

const Large Bodies[] = {
    {"positions to remove, one again and again",
     post("playlists:pl/removeItems", R"({"plid":1,"items":[0)"), ",0", "]}}"},
    {"positions to remove that are not there",
     post("playlists:pl/removeItems", R"({"plid":1,"items":[0)"), ",7654321", "]}}"},
    {"positions to move", post("playlists:pl/moveItems", R"({"plid":1,"to":1,"items":[0)"), ",2",
     "]}}"},
    {"items that no module has", post("playlists:pl/addItems", R"({"plid":1,"items":["n:x")"),
     R"(,"n:x")", "]}}"},
    {"items of empty paths", post("playlists:pl/addItems", R"({"plid":1,"items":[0)"), ",0", "]}}"},
    {"items to prepare", post("playlists:prepareItems", R"(["playlists:item/1")"),
     R"(,"playlists:item/1")", "]}"},
    {"tracks that a folder has none of", post("files:prepareItems", R"(["files:tree/x")"),
     R"(,"files:tree/x")", "]}"},
    {"one folder again and again", post("files:prepareItems", R"(["files:tree")"),
     R"(,"files:tree")", "]}"},
    {"one large item again and again",
     LargeItem + post("playlists:pl/addItems", R"({"plid":1,"items":["playlists:item/4")"),
     R"(,"playlists:item/4")", "]}}"},
    {"one large item to prepare again and again",
     LargeItem + post("playlists:prepareItems", R"(["playlists:item/4")"), R"(,"playlists:item/4")",
     "]}"},
    {"an item",
     post("playlists:pl/addExternalItems",
          R"({"plid":1,"items":[{"orvoRoles":"{\"type\":3,\"title\":\")"),
     "x", R"(\"}"}]}})"},
    {"a name", post("playlists:pl/create", R"({"name":")"), "x", "\"}}"},
    {"empty external items", post("playlists:pl/addExternalItems", R"({"plid":1,"items":[0)"),
     ",{}", "]}}"},
    {"many external items", post("playlists:pl/addExternalItems", R"({"plid":1,"items":[0)"),
     R"(,{"orvoRoles":"{\"title\":\"t\",\"type\":3}"})", "]}}"},
    {"parameters of a path", "POST /api/data\n\n{\"value\":{},\"path\":\"playlists:pl/create?a=b",
     "&a=b", "\"}"},
    {"components of a path", "POST /api/data\n\n{\"value\":{},\"path\":\"playlists:pl", "/a",
     "\"}"},
    {"a list of lists", post("playlists:pl/create", "[[]"), ",[]", "]}"},
    {"a path that is a value",
     "PUT /api/value\n\n{\"path\":\"settings:playlists/collectionsVisible\",\"value\":[0", ",0",
     "]}"},
};

const Large Addresses[] = {
    {"role names", "GET /api/rows?path=playlists:pl/items/1&roles=title", ",x", ""},
    {"watched values", "GET /api/events?watch=a:b", "&watch=a:b", ""},
    {"parameters", "GET /api/rows?path=playlists:pl/items/1", "&a", ""},
    {"a long row number", "GET /api/rows?path=playlists:pl/items/1&from=", "0", ""},
    {"components", "GET /api/rows?path=files:tree", "/..", ""},
    {"a page", "GET ", "/..", "/index.html"},
    {"a picture", "GET /api/artwork?uri=file://@MUSIC@", "/.", "/out.png"},
};

class LargeInputTest : public ::testing::Test {
protected:
    LargeInputTest() { log4cplus::Logger::getRoot().setLogLevel(log4cplus::INFO_LOG_LEVEL); }

    static void run(const Large& large, int bytes) {
        QByteArray text = large.before;
        const int room = std::max(0, bytes - text.size() - large.after.size());
        text += large.piece.repeated(std::min(room / large.piece.size(), MostPieces)) + large.after;
        QElapsedTimer clock;
        clock.start();
        Fuzz::gatewayWithDefaultLimits(text);
        std::printf("%6d ms  %s\n", int(clock.elapsed()), large.what);
        std::fflush(stdout);
        EXPECT_LT(clock.elapsed(), qint64(MostMs)) << large.what;
    }

    static constexpr int MostMs = 15000;
    // A body may have 250,000 values, and a piece has one or two.
    static constexpr int MostPieces = 120'000;
    QuietLog m_log;
};

} // namespace

// A quarter of the limit shows what grows faster than its input, and leaves time for other tests.
TEST_F(LargeInputTest, aLargeBodyTakesSeconds) {
    for (const Large& large : Bodies)
        run(large, HttpLimits().bodyBytes / 4);
}

TEST_F(LargeInputTest, rolesThatNoRowHasTakeNoTime) {
    Large many = {
        "different role names", "GET /api/rows?path=playlists:pl/items/1&roles=", ",x", {}};
    for (int i = 0; many.before.size() < HeaderBytes; ++i)
        many.before += QByteArray::number(i, 36) + ',';
    run(many, HeaderBytes);
}

TEST_F(LargeInputTest, anAddressAtTheLimitTakesSeconds) {
    for (const Large& large : Addresses)
        run(large, HeaderBytes);
}
