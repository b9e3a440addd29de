#include <QFile>
#include <QFileInfo>

#include "Device.h"

namespace {

// What the longest line may have, with its line end.
constexpr int MaxLineBytes = 2048;

class LogLimits : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device.start()); }
    // What is logged from here on.
    void begin() { before = device.log().size(); }
    QStringList logged() const { return device.log().mid(before).split('\n', Qt::SkipEmptyParts); }

    Device device;
    int before = 0;
};

} // namespace

TEST_F(LogLimits, madeUpPrefixesFillNoLog) {
    device.command("playlists:pl/create", R"({"name":"A"})");
    QByteArray items;
    for (int i = 0; i < 20000; ++i)
        items += "\"p" + QByteArray::number(i) + ":x\",";
    items.chop(1);
    begin();
    const HttpAnswer answer =
        device.command("playlists:pl/addItems", "{\"plid\":1,\"items\":[" + items + "]}");
    EXPECT_EQ(answer.status, 422) << answer.body.constData();
    EXPECT_EQ(device.command("playlists:pl/create", R"({"name":"B"})").status, 200);
    const QStringList lines = logged();
    EXPECT_EQ(lines.filter("ERROR PlayLists - replay error: NoSuchNode").size(), 5);
    EXPECT_EQ(lines.filter("ERROR PlayLists - and 19,995 more").size(), 1)
        << qPrintable(lines.mid(0, 60).join('\n'));
    EXPECT_LT(lines.size(), 100);
}

TEST_F(LogLimits, aLongNameMakesNoLongLine) {
    begin();
    const QByteArray name = QByteArray("ä").repeated(100000);
    device.command("playlists:pl/create", "{\"name\":\"" + name + "\"}");
    device.command("playlists:pl/addItems", "{\"plid\":1,\"items\":[\"files:" + name + "\"]}");
    const QStringList lines = logged();
    EXPECT_FALSE(lines.isEmpty());
    for (const QString& line : lines)
        EXPECT_LE(line.toUtf8().size() + 1, MaxLineBytes) << qPrintable(line.left(100));
}
