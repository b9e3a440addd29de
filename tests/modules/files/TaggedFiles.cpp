#include "TaggedFiles.h"

#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/xiphcomment.h>

#include <QFile>
#include <QtEndian>

#include "SoundFiles.h"

namespace {

QByteArray fromHex(const char* hex) {
    return QByteArray::fromHex(hex);
}

// One page of an Ogg stream that holds one packet of less than 255 bytes.
QByteArray oggPage(char flags, int number, const QByteArray& packet) {
    QByteArray page = "OggS";
    page += QByteArray(1, '\0') + flags + QByteArray(8, '\0') + "\x01" + QByteArray(3, '\0');
    page += char(number) + QByteArray(3, '\0') + QByteArray(4, '\0') + "\x01";
    return page + char(packet.size()) + packet;
}

QByteArray oggFile(const QByteArray& head, const QByteArray& comments) {
    return oggPage(2, 0, head) + oggPage(0, 1, comments) + oggPage(4, 2, QByteArray(20, 'x'));
}

QByteArray speexHead() {
    QByteArray head = "Speex   " + QByteArray("1.2").leftJustified(20, '\0');
    for (const quint32 number : {1U, 80U, 8000U, 0U, 4U, 1U, 0U, 160U, 0U, 1U, 0U, 0U, 0U}) {
        QByteArray bytes(4, '\0');
        qToLittleEndian(number, bytes.data());
        head += bytes;
    }
    return head;
}

// The least of each kind that sox does not write.
QByteArray leastFile(const QString& suffix) {
    const QByteArray noComments = QByteArray(8, '\0');
    const QByteArray sound(200, 'x');
    if (suffix == "opus")
        return oggFile("OpusHead" + fromHex("0101000080bb0000000000"), "OpusTags" + noComments);
    if (suffix == "spx")
        return oggFile(speexHead(), noComments);
    if (suffix == "m4a" || suffix == "m4b" || suffix == "mp4")
        return fromHex("00000010") + "ftypM4A " + QByteArray(4, '\0') + fromHex("00000008") +
               "moov" + fromHex("00000010") + "mdat" + QByteArray(8, 'x');
    if (suffix == "wma")
        return fromHex("3026b2758e66cf11a6d900aa0062ce6c") + fromHex("ee00000000000000") +
               fromHex("02000000") + fromHex("0102") + fromHex("a1dcab8c47a9cf118ee400c00c205365") +
               fromHex("6800000000000000") + QByteArray(80, '\0') +
               fromHex("9107dcb7b7a9cf118ee600c00c205365") + fromHex("6800000000000000") +
               QByteArray(80, '\0');
    if (suffix == "ape")
        return "MAC " + sound;
    if (suffix == "mpc")
        return "MP+\x07" + sound;
    if (suffix == "tta")
        return "TTA1" + sound;
    return suffix == "wv" ? "wvpk" + sound : sound;
}

} // namespace

QStringList TaggedFiles::suffixes() {
    return {"aif", "aiff", "ape", "flac", "m4a", "m4b", "mp2", "mp3", "mp4",
            "mpc", "oga",  "ogg", "opus", "spx", "tta", "wav", "wma", "wv"};
}

bool TaggedFiles::write(const QString& file, const QMap<QString, QString>& tags) {
    const QString suffix = file.section(QLatin1Char('.'), -1);
    if (suffix == "oga") // sox knows it by its other name only
        return write(file + ".ogg", tags) && QFile::rename(file + ".ogg", file);
    static const QStringList bySox = {"aif", "aiff", "flac", "mp2", "mp3", "ogg", "wav"};
    if (!bySox.contains(suffix))
        SoundFiles::writeBytes(file, leastFile(suffix));
    else if (!SoundFiles::writeWithSox(file, {}, 0.5))
        return false;
    const TagLib::FileRef reference(file.toUtf8().constData());
    if (reference.isNull())
        return false;
    TagLib::PropertyMap properties;
    for (auto it = tags.cbegin(); it != tags.cend(); ++it) {
        properties.insert(it.key().toStdString(), TagLib::StringList(TagLib::String(
                                                      it->toStdString(), TagLib::String::UTF8)));
    }
    return reference.file()->setProperties(properties).isEmpty() && reference.file()->save();
}

bool TaggedFiles::addPicture(const QString& file, const QByteArray& png) {
    const TagLib::FileRef reference(file.toUtf8().constData());
    const TagLib::ByteVector bytes(png.constData(), uint(png.size()));
    const auto flacPicture = [&bytes] {
        auto* picture = new TagLib::FLAC::Picture;
        picture->setType(TagLib::FLAC::Picture::FrontCover);
        picture->setData(bytes);
        return picture;
    };
    const auto addTo = [&bytes](TagLib::ID3v2::Tag* tag) {
        auto* frame = new TagLib::ID3v2::AttachedPictureFrame;
        frame->setMimeType("image/png");
        frame->setPicture(bytes);
        tag->addFrame(frame);
    };
    TagLib::File* opened = reference.file();
    if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(opened)) {
        flac->addPicture(flacPicture());
    } else if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(opened)) {
        addTo(mpeg->ID3v2Tag(true));
    } else if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(opened)) {
        TagLib::MP4::CoverArtList covers;
        covers.append(TagLib::MP4::CoverArt(TagLib::MP4::CoverArt::PNG, bytes));
        mp4->tag()->setItem("covr", covers);
    } else if (auto* asf = dynamic_cast<TagLib::ASF::File*>(opened)) {
        TagLib::ASF::Picture picture;
        picture.setMimeType("image/png");
        picture.setType(TagLib::ASF::Picture::FrontCover);
        picture.setPicture(bytes);
        asf->tag()->setAttribute("WM/Picture", TagLib::ASF::Attribute(picture));
    } else if (auto* ape = dynamic_cast<TagLib::APE::File*>(opened)) {
        const TagLib::ByteVector named = TagLib::ByteVector("cover.png", 10) + bytes;
        ape->APETag(true)->setItem("COVER ART (FRONT)",
                                   TagLib::APE::Item("COVER ART (FRONT)", named, true));
    } else if (auto* xiph = dynamic_cast<TagLib::Ogg::XiphComment*>(opened->tag())) {
        xiph->addPicture(flacPicture());
    } else {
        return false;
    }
    return opened->save();
}

QByteArray TaggedFiles::png(const QByteArray& content) {
    return QByteArray("\x89PNG\r\n\x1a\n") + content;
}
