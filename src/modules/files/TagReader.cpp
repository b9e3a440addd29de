#include "TagReader.h"

#include <algorithm>
#include <exception>
#include <taglib/fileref.h>
#include <taglib/infotag.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <taglib/wavfile.h>

#include "FilesLog.h"
#include "PictureReader.h"

namespace {

QString toQString(const TagLib::String& text) {
    const std::string utf8 = text.to8Bit(/*unicode=*/true);
    QString result = QString::fromUtf8(utf8.data(), int(utf8.size()));
    const auto isControl = [](QChar character) {
        return character.category() == QChar::Other_Control;
    };
    if (std::any_of(result.cbegin(), result.cend(), isControl))
        std::replace_if(result.begin(), result.end(), isControl, QLatin1Char(' '));
    result = result.trimmed();
    if (result.size() > TagReader::MaxTagText) {
        result.truncate(TagReader::MaxTagText);
        if (result.at(result.size() - 1).isHighSurrogate())
            result.chop(1);
    }
    result.squeeze();
    return result;
}

// A WAV file has two places for tags, of which its tag() is one; the older INFO chunk counts where
// that one is empty.
const TagLib::Tag* bestTag(const TagLib::FileRef& reference) {
    const TagLib::Tag* tag = reference.tag();
    const auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(reference.file());
    return wav && wav->hasInfoTag() && (!tag || tag->isEmpty()) ? wav->InfoTag() : tag;
}

// What the library has no function of its own for.
void readProperties(const TagLib::PropertyMap& properties, TrackTags* tags) {
    const auto text = [&properties](const char* name) {
        const auto it = properties.find(name);
        return it == properties.end() ? QString() : toQString(it->second.toString(", "));
    };
    tags->albumArtist = text("ALBUMARTIST");
    tags->composer = text("COMPOSER");
    tags->date = text("DATE");
    // "2", or "2/3" for the second of three.
    tags->disc = std::max(0, text("DISCNUMBER").section(QLatin1Char('/'), 0, 0).toInt());
}

TrackTags readTags(const QString& file, QByteArray* picture) {
    TrackTags tags;
    // Read-only: opened as the library would, for writing too, closing it looks like a change to
    // the folder's watch.
    TagLib::FileStream stream(file.toUtf8().constData(), /*openReadOnly=*/true);
    if (!stream.isOpen())
        return tags;
    const TagLib::FileRef reference(&stream);
    if (reference.isNull())
        return tags;
    if (const TagLib::Tag* tag = bestTag(reference)) {
        tags.title = toQString(tag->title());
        tags.artist = toQString(tag->artist());
        tags.album = toQString(tag->album());
        tags.genre = toQString(tag->genre());
        tags.trackNumber = int(tag->track());
    }
    readProperties(reference.file()->properties(), &tags);
    if (const TagLib::AudioProperties* properties = reference.audioProperties())
        tags.durationMs = qMax(0, properties->lengthInMilliseconds());
    if (picture)
        *picture = PictureReader::read(reference.file());
    return tags;
}

} // namespace

TrackTags TagReader::read(const QString& file, QByteArray* picture) {
    try {
        return readTags(file, picture);
    } catch (const std::exception& exception) {
        LOG4CPLUS_WARN(filesLog(), "cannot read the tags of " << file << ": " << exception.what());
        return {};
    }
}
