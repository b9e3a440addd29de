#pragma once

#include <atomic>
#include <cstdio>

#include "AudioOutput.h"

// Records everything that sounds, one after the other, into one WAV file, as fast as it comes. The
// first thing that sounds gives the file its format. The header tells the right length after every
// second of sound and when playback stops, so that a killed process leaves a usable file. A
// disk that is full is logged once; what does not fit is lost.
class WavOutput : public AudioOutput {
public:
    // Null, with *error saying why, when the file cannot be written.
    static std::unique_ptr<AudioOutput> open(const QString& fileName, QString* error);
    ~WavOutput() override;

    std::optional<AudioFormat> requiredFormat() const override { return m_format; }
    bool start(const AudioFormat& format) override;
    void stop() override;
    bool hasRoom() override { return true; }
    void write(const char* data, qint64 bytes) override;
    qint64 heardFrames() override { return m_frames; }

private:
    explicit WavOutput(std::FILE* file) : m_file(file) {}
    void writeHeader();

    std::FILE* m_file;
    std::optional<AudioFormat> m_format;
    qint64 m_dataBytes = 0;
    qint64 m_headerBytes = 0;
    bool m_failed = false;
    std::atomic<qint64> m_frames{0};
};
