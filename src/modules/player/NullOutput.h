#pragma once

#include <atomic>

#include "AudioOutput.h"

// Takes everything as fast as it comes and keeps none of it.
class NullOutput : public AudioOutput {
public:
    bool start(const AudioFormat& format) override {
        m_frameBytes = format.frameBytes();
        m_frames = 0;
        return true;
    }
    void stop() override { m_frames = 0; }
    bool hasRoom() override { return true; }
    void write(const char*, qint64 bytes) override { m_frames += bytes / m_frameBytes; }
    qint64 heardFrames() override { return m_frames; }

private:
    int m_frameBytes = 1;
    std::atomic<qint64> m_frames{0};
};
