#include "SoundFiles.h"

#include <cmath>
#include <cstring>
#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QUrl>

namespace {

void put(QByteArray& out, quint32 value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.append(char((value >> (8 * i)) & 0xFF));
}

quint32 get(const QByteArray& in, int at, int bytes) {
    quint32 value = 0;
    for (int i = 0; i < bytes; ++i)
        value |= quint32(quint8(in.at(at + i))) << (8 * i);
    return value;
}

// Runs a pipeline to its end.
void run(const QString& description) {
    gst_init(nullptr, nullptr);
    GError* error = nullptr;
    GstElement* pipeline = gst_parse_launch(description.toUtf8().constData(), &error);
    ASSERT_TRUE(pipeline && !error) << description.toStdString();
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* end = gst_bus_timed_pop_filtered(
        bus, 20 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    EXPECT_TRUE(end && GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS) << description.toStdString();
    if (end)
        gst_message_unref(end);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
}

} // namespace

Pcm WavFile::samples() const {
    Pcm result(data.size() / sizeof(qint16));
    std::memcpy(result.data(), data.data(), result.size() * sizeof(qint16));
    return result;
}

Pcm SoundFiles::pcm(int frames, unsigned seed) {
    Pcm samples;
    samples.reserve(size_t(frames) * 2);
    quint32 noise = seed * 2654435761U + 1;
    for (int i = 0; i < frames; ++i) {
        noise = noise * 1664525U + 1013904223U;
        const double tone = 9000 * std::sin(i * (0.01 + 0.003 * seed));
        samples.push_back(qint16(tone + int(noise >> 22) - 512));
        samples.push_back(qint16(-tone + int((noise >> 12) & 0x3FF) - 512));
    }
    return samples;
}

Pcm SoundFiles::joined(const std::vector<Pcm>& pieces) {
    Pcm whole;
    for (const Pcm& piece : pieces)
        whole.insert(whole.end(), piece.begin(), piece.end());
    return whole;
}

WavFile SoundFiles::readWav(const QString& fileName) {
    WavFile wav;
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
    const QByteArray all = file.readAll();
    if (all.size() < 44 || all.left(4) != "RIFF" || all.mid(8, 4) != "WAVE" ||
        all.mid(36, 4) != "data")
        return wav;
    wav.channels = int(get(all, 22, 2));
    wav.rate = int(get(all, 24, 4));
    wav.bits = int(get(all, 34, 2));
    wav.declaredBytes = get(all, 40, 4);
    EXPECT_EQ(get(all, 20, 2), 1U);
    EXPECT_EQ(get(all, 4, 4), wav.declaredBytes + 36);
    EXPECT_EQ(get(all, 28, 4), quint32(wav.rate * wav.channels * wav.bits / 8));
    EXPECT_EQ(get(all, 32, 2), quint32(wav.channels * wav.bits / 8));
    wav.data.assign(all.begin() + 44, all.end());
    return wav;
}

QString SoundFiles::uri(const QString& name) const {
    return QUrl::fromLocalFile(fileName(name)).toString(QUrl::FullyEncoded);
}

QString SoundFiles::text(const QString& name, const QByteArray& content) {
    QFile file(fileName(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return uri(name);
}

QString SoundFiles::wav(const QString& name, const Pcm& samples, int rate) {
    const quint32 bytes = quint32(samples.size() * sizeof(qint16));
    QByteArray out("RIFF");
    put(out, bytes + 36, 4);
    out += "WAVEfmt ";
    put(out, 16, 4);
    put(out, 1, 2);
    put(out, 2, 2);
    put(out, quint32(rate), 4);
    put(out, quint32(rate * 4), 4);
    put(out, 4, 2);
    put(out, 16, 2);
    out += "data";
    put(out, bytes, 4);
    out.append(reinterpret_cast<const char*>(samples.data()), int(bytes));
    return text(name, out);
}

QString SoundFiles::encode(const QString& name, const Pcm& samples, int rate, const char* encoder) {
    const QString source = name + QStringLiteral(".source.wav");
    wav(source, samples, rate);
    run(QStringLiteral("filesrc location=\"%1\" ! wavparse ! audioconvert ! %2 ! filesink "
                       "location=\"%3\"")
            .arg(fileName(source), QString::fromLatin1(encoder), fileName(name)));
    return uri(name);
}

QString SoundFiles::flac(const QString& name, const Pcm& samples, int rate) {
    return encode(name, samples, rate, "flacenc");
}

QString SoundFiles::ogg(const QString& name, const Pcm& samples, int rate) {
    return encode(name, samples, rate, "vorbisenc ! oggmux");
}

std::vector<char> SoundFiles::decoded(const QString& fileName, const std::string& caps) {
    QTemporaryDir folder;
    const QString raw = folder.filePath(QStringLiteral("raw"));
    run(QStringLiteral("filesrc location=\"%1\" ! decodebin ! audioconvert dithering=none ! %2 ! "
                       "filesink location=\"%3\"")
            .arg(fileName, QString::fromStdString(caps), raw));
    QFile file(raw);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray all = file.readAll();
    return {all.begin(), all.end()};
}
