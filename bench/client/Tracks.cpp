#include "Tracks.h"

#include "Report.h"

namespace {

std::string track(int number) {
    constexpr int PerAlbum = 12;
    constexpr int PerArtist = 60;
    const std::string title = "Track number " + std::to_string(number);
    const std::string artist = "Artist " + std::to_string(number / PerArtist);
    const std::string album = "Album " + std::to_string(number / PerAlbum);
    const std::string folder = "Artist%20" + std::to_string(number / PerArtist) + "/Album%20" +
                               std::to_string(number / PerAlbum) + '/';
    const std::string file = folder + "Track%20number%20" + std::to_string(number) + ".flac";
    const std::string url = "file:///srv/music/" + file;
    const std::string cover = "file:///srv/music/" + folder + "cover.png";
    const std::string roles =
        R"({"mediaData":{"metaData":{"album":")" + album + R"(","artist":")" + artist +
        R"(","artworkUrl":")" + cover + R"(","duration":215000,"genre":"Folk",)" +
        R"("prePlayPath":"files:prePlay","serviceId":"files","trackNumber":)" +
        std::to_string(number % PerAlbum + 1) +
        R"(},"resources":[{"mimeType":"audio/flac","uri":")" + url + R"("}]},"path":"files:tree/)" +
        file + R"(","title":")" + title + R"(","type":3})";
    return R"({"title":")" + title + R"(","artist":")" + artist + R"(","album":")" + album +
           R"(","artworkUrl":")" + cover +
           R"(","genre":"Folk","durationSeconds":215,"serviceId":"files","url":")" + url +
           R"(","orvoRoles":)" + jsonQuoted(roles) + '}';
}

} // namespace

std::string Tracks::items(int first, int count) {
    std::string list = "[";
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            list += ',';
        list += track(first + i);
    }
    return list + ']';
}
