#include "ItemMaker.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "MusicRoles.h"

namespace {

// Texts that JSON, URLs and paths write in ways of their own.
const QStringList& oddNames() {
    static const QStringList all = [] {
        QString ascii;
        for (char16_t c = 1; c < 0x80; ++c)
            ascii += QChar(c);
        ascii.remove(QLatin1Char('/'));
        return QStringList{QStringLiteral("plain.flac"),
                           QStringLiteral("01 with blanks.mp3"),
                           QStringLiteral("say \"when\".ogg"),
                           QStringLiteral("back\\slash%2F#?.wav"),
                           QString::fromUtf8("Süß – 東京 🎵.flac"),
                           QStringLiteral("half a character ") + QChar(0xD83C) +
                               QStringLiteral(".wav"),
                           QStringLiteral("ends in half ") + QChar(0xD83C),
                           QString(QChar(0x7F)) + QChar(0x2028) + QChar(0xFFFF),
                           ascii};
    }();
    return all;
}

FolderPtr folderNamed(const QString& name, const QString& artwork) {
    auto folder = std::make_shared<Folder>();
    folder->name = name;
    folder->path = MusicTree::rootPath() + name;
    folder->diskPath = QStringLiteral("/srv/") + name;
    folder->artwork = artwork;
    return folder;
}

Track trackNamed(const QString& name, const TrackTags& tags) {
    Track track;
    track.name = name;
    track.mimeType = QStringLiteral("audio/x-any");
    track.tags = std::make_shared<const TrackTags>(tags);
    return track;
}

void expectTheRolesOf(const FolderPtr& folder, const Track& track, ItemMaker* maker) {
    const OrvoRoles roles = MusicRoles::track(*folder, track);
    const OrvoMetaData metaData = roles.mediaData().metaData();
    const OrvoPlayListItem item = maker->item(folder, track);
    EXPECT_EQ(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                    .toJson(QJsonDocument::Compact)),
              item.orvoRoles());
    EXPECT_EQ(roles.mediaData().resources().value(0).uri(), item.url());
    EXPECT_EQ(roles.title().toString(), item.title());
    EXPECT_EQ(metaData.artist(), item.artist());
    EXPECT_EQ(metaData.album(), item.album());
    EXPECT_EQ(metaData.genre(), item.genre());
    EXPECT_EQ(metaData.artworkUrl(), item.artworkUrl());
    EXPECT_EQ(metaData.serviceId(), item.serviceId());
    EXPECT_EQ((metaData.duration() + 500) / 1000, item.durationSeconds());
    EXPECT_EQ(9, item.toHash().size());
}

} // namespace

TEST(ItemMakerTest, anItemHasTheTextOfItsTracksRoles) {
    ItemMaker maker;
    for (const QString& folderName : oddNames()) {
        for (const QString& artwork : {QString(), folderName}) {
            const FolderPtr folder = folderNamed(folderName, artwork);
            for (const QString& name : oddNames()) {
                SCOPED_TRACE(qPrintable(folderName + QLatin1String(" | ") + name));
                TrackTags tags;
                expectTheRolesOf(folder, trackNamed(name, tags), &maker);
                tags.title = tags.artist = name;
                tags.album = tags.genre = folderName;
                tags.durationMs = 123499;
                tags.trackNumber = 7;
                expectTheRolesOf(folder, trackNamed(name, tags), &maker);
                tags.durationMs = 1234567890123LL;
                expectTheRolesOf(folder, trackNamed(name, tags), &maker);
            }
        }
    }
}
