#include "PictureReader.h"

#include <taglib/aifffile.h>
#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpcfile.h>
#include <taglib/mpegfile.h>
#include <taglib/trueaudiofile.h>
#include <taglib/wavfile.h>
#include <taglib/wavpackfile.h>
#include <taglib/xiphcomment.h>

namespace {

QByteArray toBytes(const TagLib::ByteVector& data) {
    return QByteArray(data.data(), int(data.size()));
}

QByteArray ofFlacPictures(const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
    for (const TagLib::FLAC::Picture* picture : pictures) {
        if (picture->type() == TagLib::FLAC::Picture::FrontCover)
            return toBytes(picture->data());
    }
    return pictures.isEmpty() ? QByteArray() : toBytes(pictures.front()->data());
}

QByteArray ofId3(const TagLib::ID3v2::Tag* tag) {
    using Frame = TagLib::ID3v2::AttachedPictureFrame;
    const Frame* best = nullptr;
    if (tag) {
        for (const TagLib::ID3v2::Frame* frame : tag->frameList("APIC")) {
            const auto* picture = dynamic_cast<const Frame*>(frame);
            if (picture && (!best || (picture->type() == Frame::FrontCover &&
                                      best->type() != Frame::FrontCover)))
                best = picture;
        }
    }
    return best ? toBytes(best->picture()) : QByteArray();
}

QByteArray ofApe(const TagLib::APE::Tag* tag) {
    const char* const name = "COVER ART (FRONT)";
    if (!tag || !tag->itemListMap().contains(name))
        return {};
    // A file name, a zero byte, the picture.
    const QByteArray data = toBytes(tag->itemListMap()[name].binaryData());
    return data.mid(data.indexOf('\0') + 1);
}

QByteArray ofXiph(TagLib::Ogg::XiphComment* tag) {
    return ofFlacPictures(tag->pictureList());
}

QByteArray ofMp4(const TagLib::MP4::Tag* tag) {
    if (!tag || !tag->contains("covr"))
        return {};
    const TagLib::MP4::CoverArtList covers = tag->item("covr").toCoverArtList();
    return covers.isEmpty() ? QByteArray() : toBytes(covers.front().data());
}

QByteArray ofAsf(const TagLib::ASF::Tag* tag) {
    const char* const name = "WM/Picture";
    if (!tag || !tag->attributeListMap().contains(name))
        return {};
    const TagLib::ASF::AttributeList& pictures = tag->attributeListMap()[name];
    return pictures.isEmpty() ? QByteArray() : toBytes(pictures.front().toPicture().picture());
}

// What `read` makes of the file where it is a File, else nothing.
template <typename File, typename Read>
bool tryAs(TagLib::File* file, QByteArray* picture, Read read) {
    auto* opened = dynamic_cast<File*>(file);
    if (opened)
        *picture = read(opened);
    return opened != nullptr;
}

} // namespace

QByteArray PictureReader::read(TagLib::File* file) {
    using namespace TagLib;
    QByteArray picture;
    tryAs<FLAC::File>(file, &picture,
                      [](auto* f) {
                          const QByteArray own = ofFlacPictures(f->pictureList());
                          return own.isEmpty() && f->hasID3v2Tag() ? ofId3(f->ID3v2Tag()) : own;
                      }) ||
        tryAs<MPEG::File>(file, &picture,
                          [](auto* f) {
                              const QByteArray id3 = ofId3(f->ID3v2Tag());
                              return id3.isEmpty() ? ofApe(f->APETag()) : id3;
                          }) ||
        tryAs<MP4::File>(file, &picture, [](auto* f) { return ofMp4(f->tag()); }) ||
        tryAs<ASF::File>(file, &picture, [](auto* f) { return ofAsf(f->tag()); }) ||
        tryAs<RIFF::WAV::File>(file, &picture, [](auto* f) { return ofId3(f->ID3v2Tag()); }) ||
        tryAs<RIFF::AIFF::File>(file, &picture, [](auto* f) { return ofId3(f->tag()); }) ||
        tryAs<TrueAudio::File>(file, &picture, [](auto* f) { return ofId3(f->ID3v2Tag()); }) ||
        tryAs<APE::File>(file, &picture, [](auto* f) { return ofApe(f->APETag()); }) ||
        tryAs<MPC::File>(file, &picture, [](auto* f) { return ofApe(f->APETag()); }) ||
        tryAs<WavPack::File>(file, &picture, [](auto* f) { return ofApe(f->APETag()); });
    if (auto* xiph = dynamic_cast<Ogg::XiphComment*>(file->tag()); xiph && picture.isEmpty())
        picture = ofXiph(xiph);
    return picture;
}
