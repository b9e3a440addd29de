#include <QJsonDocument>
#include <QJsonObject>

#include "ListsFixture.h"
#include "ListWriter.h"
#include "Random.h"

namespace {

// Letters that files and lists have trouble with, and plain ones.
const QString Letters =
    QString::fromUtf8("aB1 -,.#:;%&<>\"'\\[]=ß🎵ё日\u0301\u200f\t\n\r\u0085\u2028\x1b");

class RoundTrip : public ListsFixture {
protected:
    int upTo(int most) { return m_random.below(most + 1); }

    QString text(int longest) {
        QVector<uint> letters;
        const QVector<uint> all = Letters.toUcs4();
        for (int left = upTo(longest); left > 0; --left)
            letters.append(all.at(upTo(all.size() - 1)));
        return QString::fromUcs4(letters.constData(), letters.size());
    }

    QString fileName(int number) {
        const QString name = text(12);
        const QString hidden = name.startsWith('.') ? "x" : "";
        return hidden + name + QString::number(number) + ".wav";
    }

    static QStringList shown(int plid) {
        QStringList lines;
        for (const OrvoRoles& row : rows(plid)) {
            const OrvoMetaData data = row.mediaData().metaData();
            lines.append(row.title().toString() + '|' + data.artist() + '|' + data.album() + '|' +
                         row.mediaData().resources().value(0).uri());
        }
        return lines;
    }

    Random m_random{Random::firstSeed()};
};

} // namespace

TEST_F(RoundTrip, aListIsTheSameAfterItWentOutAndCameIn) {
    constexpr int Files = 60;
    constexpr int Streams = 40;
    for (int i = 0; i < Files; ++i)
        track(text(4).remove('/').remove('.') + "d/" + fileName(i),
              {text(10), text(6), text(6), {}, 0});
    start();
    ASSERT_EQ(call("playlists:pl/create", {{"name", "Round " + text(8)}}).error.name(), QString());
    QVariantList items;
    for (int i = 0; i < Streams; ++i) {
        const OrvoRoles roles(QVariantHash{
            {"type", 3},
            {"title", text(20)},
            {"mediaData",
             QVariantHash{{"metaData", QVariantHash{{"artist", text(8)}, {"album", text(8)}}},
                          {"resources", QVariantList{QVariantHash{
                                            {"uri", QStringLiteral("http://a/%1").arg(i)}}}}}}});
        items.append(roles.toHash());
    }
    call("playlists:pl/addItems", {{"plid", 1}, {"items", QStringList{"files:tree"}}});
    QVariantList complete;
    for (const QVariant& item : qAsConst(items)) {
        const QVariantHash roles = item.toHash();
        complete.append(QVariantHash{
            {"title", roles.value("title")},
            {"url", OrvoRoles(roles).mediaData().resources().value(0).uri()},
            {"serviceId", "test"},
            {"orvoRoles",
             QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles)).toJson())}});
    }
    call("playlists:pl/addExternalItems", {{"plid", 1}, {"items", complete}});
    ASSERT_GE(tracks(1).size(), Files);

    for (const char* format : {"m3u8", "xspf"}) {
        for (const char* paths : {"relative", "absolute", "url"}) {
            SCOPED_TRACE(std::string(format) + ' ' + paths);
            const QString written = exportList(1, format, paths).text();
            const Answer first = importText(written);
            EXPECT_EQ(first.notFound(), QStringList());
            EXPECT_EQ(tracks(first.plid()), tracks(1));
            const QString again = exportList(first.plid(), format, paths).text();
            EXPECT_EQ(again, written);
            const Answer second = importText(again);
            EXPECT_EQ(shown(second.plid()), shown(first.plid()));
        }
    }
}

TEST_F(RoundTrip, aTextBecomesPlainOnceAndForAll) {
    for (int i = 0; i < 2000; ++i) {
        const QString plain = ListWriter::plain(text(30));
        EXPECT_EQ(ListWriter::plain(plain), plain);
        EXPECT_FALSE(plain.contains('\n') || plain.contains('\r') || plain.contains(QChar(0x2028)));
    }
}
