#include "WavOutput.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <QFile>

#include "PlayerLog.h"

namespace {

constexpr int HeaderSize = 44;
constexpr qint64 LargestChunk = 0xFFFFFFFFLL - HeaderSize;

class HeaderWriter {
public:
    void text(const char* four) {
        std::memcpy(&m_bytes.at(m_at), four, 4);
        m_at += 4;
    }
    void number(quint32 value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            m_bytes.at(m_at++) = char((value >> (8 * i)) & 0xFF);
    }
    const std::array<char, HeaderSize>& bytes() const { return m_bytes; }

private:
    std::array<char, HeaderSize> m_bytes{};
    size_t m_at = 0;
};

} // namespace

std::unique_ptr<AudioOutput> WavOutput::open(const QString& fileName, QString* error) {
    std::FILE* file = std::fopen(QFile::encodeName(fileName).constData(), "wb");
    if (!file) {
        *error = QStringLiteral("cannot write %1: %2")
                     .arg(fileName, QString::fromLocal8Bit(std::strerror(errno)));
        return {};
    }
    return std::unique_ptr<AudioOutput>(new WavOutput(file));
}

WavOutput::~WavOutput() {
    stop();
    std::fclose(m_file);
}

bool WavOutput::start(const AudioFormat& format) {
    m_format = format;
    m_frames = 0;
    return true;
}

void WavOutput::stop() {
    writeHeader();
    m_frames = 0;
}

void WavOutput::write(const char* data, qint64 bytes) {
    if (m_dataBytes == 0)
        writeHeader();
    const size_t written = std::fwrite(data, 1, size_t(bytes), m_file);
    m_dataBytes += qint64(written);
    m_frames += bytes / m_format->frameBytes();
    if (qint64(written) != bytes && !m_failed) {
        m_failed = true;
        LOG4CPLUS_ERROR(playerLog(), "cannot write the sound file: " << std::strerror(errno));
    }
    if (m_dataBytes - m_headerBytes >= qint64(m_format->rate) * m_format->frameBytes())
        writeHeader();
}

void WavOutput::writeHeader() {
    if (!m_format)
        return;
    const quint32 dataSize = quint32(std::min(m_dataBytes, LargestChunk));
    HeaderWriter header;
    header.text("RIFF");
    header.number(dataSize + HeaderSize - 8, 4);
    header.text("WAVE");
    header.text("fmt ");
    header.number(16, 4);
    header.number(1, 2); // PCM
    header.number(quint32(m_format->channels), 2);
    header.number(quint32(m_format->rate), 4);
    header.number(quint32(m_format->rate * m_format->frameBytes()), 4);
    header.number(quint32(m_format->frameBytes()), 2);
    header.number(quint32(m_format->sampleBytes() * 8), 2);
    header.text("data");
    header.number(dataSize, 4);
    std::fseek(m_file, 0, SEEK_SET);
    std::fwrite(header.bytes().data(), 1, header.bytes().size(), m_file);
    std::fseek(m_file, 0, SEEK_END);
    std::fflush(m_file);
    m_headerBytes = m_dataBytes;
}
