// Makes tiny FLAC files in a folder, tagged by TagLib:  orvo_bench_tag_files FOLDER < LINES
// A line is the file's name and its tags, with tabs between them: "a/1.flac", "TITLE=Two words".

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

namespace {

bool write(const std::filesystem::path& file, std::istream& tags) {
    // 16 bits and 44,100 Hz, and no sound.
    std::string bytes("fLaC\x80\0\0\x22\x10\0\x10\0\0\0\0\0\0\0\x0a\xc4\x40\xf0", 22);
    bytes.resize(4 + 4 + 34);
    std::filesystem::create_directories(file.parent_path());
    if (!(std::ofstream(file, std::ios::binary) << bytes).flush())
        return false;
    TagLib::PropertyMap properties;
    for (std::string tag; std::getline(tags, tag, '\t');) {
        const std::size_t middle = tag.find('=');
        properties.insert(tag.substr(0, middle),
                          TagLib::String(tag.substr(middle + 1), TagLib::String::UTF8));
    }
    if (properties.isEmpty())
        return true;
    const TagLib::FileRef reference(file.c_str());
    return !reference.isNull() && reference.file()->setProperties(properties).isEmpty() &&
           reference.file()->save();
}

} // namespace

int main(int argc, char** argv) {
    bool ok = argc == 2;
    for (std::string line; ok && std::getline(std::cin, line);) {
        std::istringstream fields(line);
        std::string name;
        ok = std::getline(fields, name, '\t') &&
             write(std::filesystem::path(argv[1]) / name, fields);
    }
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
