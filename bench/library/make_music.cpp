// Makes a music library of tiny FLAC files, tagged by TagLib:  orvo_bench_music TRACKS FOLDER
// With TRACKS below zero as many without tags. Two runs make the same.

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

namespace {

constexpr int TracksPerAlbum = 12;
constexpr int AlbumsPerArtist = 5;

// So many made-up words, the same ones for a kind and number.
std::string words(int count, int kind, int number) {
    static constexpr std::array syllables = {"ba", "den", "kol", "la",  "mir", "no", "par", "quil",
                                             "ri", "sa",  "tor", "ven", "wu",  "xe", "yl",  "zém"};
    std::seed_seq seed{kind, number};
    std::mt19937 dice(seed);
    std::string text;
    for (int word = 0; word < count; ++word) {
        text += word == 0 ? "" : " ";
        for (std::size_t rest = 2 + dice() % 2; rest > 0; --rest)
            text += syllables[dice() % syllables.size()];
    }
    return text;
}

bool tag(const std::string& file, int track) {
    enum Kind { Title, Artist, Album, Genre, Composer };
    const int album = track / TracksPerAlbum;
    const int artist = album / AlbumsPerArtist;
    const std::pair<const char*, std::string> tags[] = {
        {"TITLE", words(3, Title, track)},
        {"ARTIST", words(2, Artist, artist)},
        {"ALBUMARTIST", words(2, Artist, artist)},
        {"ALBUM", words(2, Album, album)},
        {"GENRE", words(1, Genre, artist % 20)},
        {"COMPOSER", words(2, Composer, album % 1000)},
        {"DATE", std::to_string(1960 + album % 60)},
        {"TRACKNUMBER", std::to_string(track % TracksPerAlbum + 1)},
    };
    TagLib::PropertyMap properties;
    for (const auto& [name, text] : tags)
        properties.insert(name, TagLib::String(text, TagLib::String::UTF8));
    const TagLib::FileRef reference(file.c_str());
    return !reference.isNull() && reference.file()->setProperties(properties).isEmpty() &&
           reference.file()->save();
}

} // namespace

int main(int argc, char** argv) {
    // 16 bits and 44,100 Hz, and no sound.
    std::string bytes("fLaC\x80\0\0\x22\x10\0\x10\0\0\0\0\0\0\0\x0a\xc4\x40\xf0", 22);
    bytes.resize(4 + 4 + 34);
    const int tracks = argc == 3 ? std::atoi(argv[1]) : 0;
    bool ok = tracks != 0;
    for (int track = 0; ok && track < std::abs(tracks); ++track) {
        const auto folder = std::filesystem::path(argv[2]) /
                            std::to_string(track / TracksPerAlbum / AlbumsPerArtist) /
                            std::to_string(track / TracksPerAlbum);
        std::filesystem::create_directories(folder);
        const std::string file = folder / (std::to_string(track) + ".flac");
        ok = bool((std::ofstream(file, std::ios::binary) << bytes).flush()) &&
             (tracks < 0 || tag(file, track));
    }
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
