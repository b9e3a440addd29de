#include "Device.h"

namespace {

class CommandsOverHttp : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device.start()); }

    void expectTrue(const HttpAnswer& answer) {
        EXPECT_EQ(answer.status, 200) << answer.body.constData();
        EXPECT_EQ(answer.body,
                  R"({"result":{"result":{"value":{"bool":true}},"xclass":"OrvoActionReply"}})");
    }
    void expectId(const HttpAnswer& answer, int id) {
        EXPECT_EQ(answer.status, 200) << answer.body.constData();
        EXPECT_EQ(answer.json()
                      .value("result")
                      .toObject()
                      .value("result")
                      .toObject()
                      .value("value")
                      .toObject()
                      .value("i32")
                      .toInt(),
                  id);
    }
    void expectRefused(const HttpAnswer& answer, const QString& message) {
        EXPECT_EQ(answer.status, 422);
        EXPECT_EQ(answer.errorMessage(), message);
    }

    Device device;
};

const QByteArray item =
    R"({"title":"A","url":"file:///a.flac","serviceId":"files","orvoRoles":"{\"type\":3,\"title\":\"A\"}"})";

} // namespace

TEST_F(CommandsOverHttp, allSixteenCommandsAnswer) {
    expectId(device.command("playlists:pl/create", R"({"name":"Party"})"), 1);
    expectId(device.command("playlists:cl/create", R"({"name":"Weekend"})"), 1);
    expectTrue(device.command("playlists:pl/setName", R"({"plid":1,"name":"Late party"})"));
    expectTrue(device.command("playlists:pl/setShuffle", R"({"plid":1,"mode":1})"));
    expectTrue(device.command("playlists:pl/setRepeat", R"({"plid":1,"mode":"repeatAll"})"));
    expectTrue(device.command("playlists:pl/addExternalItems",
                              R"({"plid":1,"items":[)" + item + "," + item + "]}"));
    expectTrue(
        device.command("playlists:pl/addItems",
                       R"({"plid":1,"items":["files:tree/Band%201/Album%201/01%20track.wav"]})"));
    const HttpAnswer prepared = device.command("playlists:prepareItems", R"(["playlists:item/1"])");
    EXPECT_EQ(prepared.status, 200);
    EXPECT_EQ(prepared.json().value("result").toArray().at(0).toObject().value("title").toString(),
              "A");
    expectTrue(device.command("playlists:pl/moveItems", R"({"plid":1,"items":[2],"to":0})"));
    EXPECT_EQ(device.titles("playlists:pl/items/1"), (QStringList{"Track 1.1", "A", "A"}));
    expectTrue(device.command("playlists:pl/removeItems", R"({"plid":1,"items":[1]})"));
    EXPECT_EQ(device.titles("playlists:pl/items/1"), (QStringList{"Track 1.1", "A"}));
    expectTrue(device.command("playlists:cl/addItem", R"({"clid":1,"plid":1})"));
    EXPECT_EQ(device.titles("playlists:cl/items%3Fclid%3D1"), QStringList{"Late party"});
    expectTrue(device.command("playlists:cl/removeItem", R"({"clid":1,"plid":1})"));
    expectTrue(device.command("playlists:pl/play", R"({"plid":1})"));
    expectTrue(device.command("playlists:pl/clear", R"({"plid":1})"));
    EXPECT_EQ(device.titles("playlists:pl/items/1"), QStringList());
    expectTrue(device.command("playlists:cl/delete", R"({"clid":1})"));
    expectTrue(device.command("playlists:pl/delete", R"({"plid":1})"));
    device.kill();
    device.expectInvariants();
    EXPECT_EQ(device.query("SELECT uid, name FROM playlists"), QStringList{"0|PlayQueue"});
}

TEST_F(CommandsOverHttp, eachRefusalReachesTheCallerAndChangesNothing) {
    device.command("playlists:pl/create", R"({"name":"Party"})");
    device.command("playlists:pl/addExternalItems", R"({"plid":1,"items":[)" + item + "]}");
    struct Row {
        const char* path;
        const char* value;
        const char* message;
    };
    const Row rows[] = {
        {"playlists:pl/create", R"({"name":""})",
         "Could not create playlist. Please provide a non-empty string as field. (name)"},
        {"playlists:cl/create", "{}",
         "Could not create collection. Please provide a non-empty string as field. (name)"},
        {"playlists:cl/delete", R"({"clid":7})",
         "Could not delete collection. There is no collection with this ID. (7)"},
        {"playlists:pl/setName", R"({"plid":0,"name":""})",
         "Could not set playlist name. Cannot rename PlayQueue."},
        {"playlists:pl/setName", R"({"name":"x"})",
         "Could not set playlist name. Cannot find playlist with invalid ID."},
        {"playlists:pl/setShuffle", R"({"plid":1,"mode":2})",
         "Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)"},
        {"playlists:pl/setRepeat", R"({"plid":1,"mode":4})",
         "Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)"},
        {"playlists:pl/delete", R"({"plid":0})",
         "Could not delete playlist. Cannot delete PlayQueue."},
        {"playlists:pl/delete", R"({"plid":9})",
         "Could not delete playlist. There is no playlist with this ID. (9)"},
        {"playlists:cl/addItem", R"({"plid":1,"clid":3})",
         "Could not add items to collection. There is no collection with this ID. (3)"},
        {"playlists:cl/removeItem", R"({"plid":1,"clid":3})",
         "Could not remove items from collection. There is no collection with this ID. (3)"},
        {"playlists:pl/clear", R"({"plid":"none"})",
         "Could not clear playlist. Cannot find playlist with invalid ID."},
        {"playlists:pl/removeItems", R"({"plid":5,"items":[]})",
         "Could not remove items from playlist. Please select one or more items to remove."},
        {"playlists:pl/removeItems", R"({"plid":1,"items":[0,1]})",
         "Could not remove items from playlist. Remove items failed"},
        {"playlists:pl/moveItems", R"({"plid":5,"items":[0],"to":-1})",
         "Could not move items in playlist. Cannot move items to negative position."},
        {"playlists:pl/moveItems", R"({"plid":1,"items":[0],"to":1})",
         "Could not move items in playlist. Cannot move items, sequence number is not in valid range."},
        {"playlists:pl/play", R"({"plid":0})",
         "Could not start playback on playlist. There are no items in the playlist."},
        {"playlists:pl/addItems", R"({"plid":1})",
         "Could not add items to playlist. Please select one or more items to add."},
        {"playlists:pl/addItems", R"({"plid":1,"items":["nobody:track/1"]})",
         "Could not add items to playlist. No items were added. (No playitem found.)"},
        {"playlists:pl/addExternalItems", R"({"plid":1,"items":[{"orvoRoles":"{\"type\":1}"}]})",
         "Could not add external items to playlist. No items were added."
         " (Missing title or type==audio or [resource uri and prePlayPath])"},
    };
    for (const Row& row : rows)
        expectRefused(device.command(row.path, row.value), row.message);
    EXPECT_EQ(device.titles("playlists:pl/items/1"), QStringList{"A"});
    EXPECT_EQ(device.titles("playlists:pl/list"), (QStringList{"Create new playlist", "Party"}));
}

TEST_F(CommandsOverHttp, whatIsNoCommandIsAnsweredToo) {
    EXPECT_EQ(device.command("playlists:pl/items/0", "{}").status, 404);
    EXPECT_EQ(device.command("playlists:pq/items", "{}").status, 422);
    EXPECT_EQ(device.command("playlists:root", "{}").status, 422);
    EXPECT_EQ(device.command("playlists:pl/nothing", "{}").status, 404);
    EXPECT_EQ(device.command("nobody:at/all", "{}").status, 404);
    EXPECT_EQ(device.command("playlists:pl/create", "\"text\"").status, 400);
}
