#include <QDir>

#include "FuzzTarget.h"
#include "ListFormats.h"
#include "ListLimits.h"
#include "ListText.h"
#include "ListWriter.h"
#include "TrackPlace.h"

namespace {

// The first byte says which suffix the file has.
QString suffixOf(const QByteArray& input) {
    static const QStringList suffixes = {"m3u", "m3u8", "pls", "xspf", "txt", ""};
    return input.isEmpty() ? QString() : suffixes.at(uchar(input.at(0)) % suffixes.size());
}

void requireSane(const ListedTrack& track) {
    Fuzz::require(track.line > 0, "an entry is in no line");
    Fuzz::require(track.durationMs >= 0, "a length is negative");
    for (const QString& base : {QString(), QString("Lists"), QString("/music/Lists")}) {
        const TrackPlace place = TrackPlace::of(track.location, track.isUri, base);
        Fuzz::require(place.address.isEmpty() || place.files.isEmpty(),
                      "a file and an address: " + track.location);
        for (const QString& file : place.files) {
            Fuzz::require(QDir::cleanPath(file) == file, "not clean: " + file);
            Fuzz::require(!file.startsWith("../"), "above the music folder: " + file);
        }
    }
}

// As an export makes it of such tracks: what is read of it is what was written.
void requireRoundTrip(const TrackList& list, const char* suffix) {
    const ListFormat* format = ListFormats::ofSuffix(QString::fromLatin1(suffix));
    TrackList written = list;
    for (std::size_t i = 0; i < written.tracks.size(); ++i) {
        written.tracks[i].location = QStringLiteral("http://a/%1").arg(i);
        if (ListWriter::plain(written.tracks[i].title).isEmpty())
            written.tracks[i].title = written.tracks[i].location;
    }
    const QByteArray text = format->write(written);
    const ListReader::Result read = ListReader::read(QString::fromUtf8(text), "txt");
    Fuzz::require(read.refusal.isEmpty(), "is not read again: " + read.refusal.toString());
    Fuzz::require(read.list.tracks.size() == written.tracks.size(), "another number of entries");
    for (std::size_t i = 0; i < written.tracks.size(); ++i) {
        const ListedTrack& before = written.tracks[i];
        const ListedTrack& after = read.list.tracks[i];
        Fuzz::require(after.location == before.location &&
                          after.title == ListWriter::plain(before.title) &&
                          after.artist == ListWriter::plain(before.artist) &&
                          after.album == ListWriter::plain(before.album),
                      QString::fromLatin1(suffix) + " has another entry: " + after.title);
    }
}

} // namespace

// Playlist files of other programs.
void Fuzz::lists(const QByteArray& input) {
    const ListReader::Result result =
        ListReader::read(ListText::decoded(input.mid(1)), suffixOf(input));
    if (!result.refusal.isEmpty())
        return;
    require(result.list.tracks.size() <= std::size_t(ListLimits::MaxEntries), "too many entries");
    for (const ListedTrack& track : result.list.tracks)
        requireSane(track);
    for (const char* suffix : {"m3u8", "xspf"})
        requireRoundTrip(result.list, suffix);
}
