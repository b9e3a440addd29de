#include "TagReader.h"

#include <exception>
#include <taglib/fileref.h>
#include <taglib/infotag.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/wavfile.h>

#include "FilesLog.h"

namespace {

QString toQString(const TagLib::String& text) {
    const std::string utf8 = text.to8Bit(/*unicode=*/true);
    return QString::fromUtf8(utf8.data(), int(utf8.size())).trimmed();
}

// A WAV file has two places for tags, of which its tag() is one; the older INFO chunk counts where
// that one is empty.
const TagLib::Tag* bestTag(const TagLib::FileRef& reference) {
    const TagLib::Tag* tag = reference.tag();
    const auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(reference.file());
    return wav && wav->hasInfoTag() && (!tag || tag->isEmpty()) ? wav->InfoTag() : tag;
}

TrackTags readTags(const QString& file) {
    TrackTags tags;
    // Read-only: opened as the library would, for writing too, closing it looks like a change to
    // whoever watches.
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
    if (const TagLib::AudioProperties* properties = reference.audioProperties())
        tags.durationMs = qMax(0, properties->lengthInMilliseconds());
    return tags;
}

} // namespace

TrackTags TagReader::read(const QString& file) {
    try {
        return readTags(file);
    } catch (const std::exception& exception) {
        LOG4CPLUS_WARN(filesLogger(),
                       "cannot read the tags of " << file << ": " << exception.what());
        return {};
    }
}
