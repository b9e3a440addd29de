#include "TrackPlace.h"

#include <gtest/gtest.h>

#include "Printing.h"

namespace {

QStringList filesOf(const QString& location, const QString& base = {}, bool isUri = false) {
    return TrackPlace::of(location, isUri, base).files;
}

} // namespace

TEST(TrackPlace, aNameIsTakenAsItStandsThenByItsBackslashesThenByItsPercentCodes) {
    EXPECT_EQ(filesOf("A/b.mp3"), QStringList{"A/b.mp3"});
    EXPECT_EQ(filesOf("A\\b%20c.mp3"),
              (QStringList{"A\\b%20c.mp3", "A/b%20c.mp3", "A\\b c.mp3", "A/b c.mp3"}));
    EXPECT_EQ(filesOf("100%.mp3"), QStringList{"100%.mp3"});
}

TEST(TrackPlace, addressesAreDecodedFirst) {
    EXPECT_EQ(filesOf("a%20b.mp3", {}, true), (QStringList{"a b.mp3", "a%20b.mp3"}));
    EXPECT_EQ(filesOf("file:///m/a%2525.mp3"), (QStringList{"/m/a%25.mp3", "/m/a%2525.mp3"}));
    EXPECT_EQ(filesOf("file://localhost/m/a#1?.mp3"), QStringList{"/m/a#1?.mp3"});
    EXPECT_EQ(filesOf("file:C:\\M\\a.mp3"), (QStringList{"C:\\M\\a.mp3", "/M/a.mp3"}));
    EXPECT_EQ(filesOf("file:///C:/M/a.mp3"), QStringList{"/M/a.mp3"});
}

TEST(TrackPlace, relativeNamesStartFromTheListsFolder) {
    EXPECT_EQ(filesOf("a.mp3", "/m/Lists"), QStringList{"/m/Lists/a.mp3"});
    EXPECT_EQ(filesOf("../B/a.mp3", "/m/Lists"), QStringList{"/m/B/a.mp3"});
    EXPECT_EQ(filesOf("../a.mp3", "Lists"), QStringList{"a.mp3"});
    EXPECT_EQ(filesOf("/x/a.mp3", "/m/Lists"), QStringList{"/x/a.mp3"});
}

TEST(TrackPlace, nothingIsAboveTheMusicFolder) {
    EXPECT_EQ(filesOf("../../a.mp3"), QStringList{"a.mp3"});
    EXPECT_EQ(filesOf("x/../../../a.mp3"), QStringList{"a.mp3"});
}

TEST(TrackPlace, onlyHttpIsAnAddressOfTheNetwork) {
    EXPECT_EQ(TrackPlace::of("HttpS://x/y z", false, "/m").address, "HttpS://x/y z");
    for (const char* other : {"http://", "rtsp://x/y", "cdda://1", ""}) {
        const TrackPlace place = TrackPlace::of(QString::fromUtf8(other), false, "/m");
        EXPECT_EQ(place.address, QString()) << other;
        EXPECT_EQ(place.files, QStringList()) << other;
    }
}
