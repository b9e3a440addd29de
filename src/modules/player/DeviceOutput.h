#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>

#include "AudioOutput.h"
#include "GstPointers.h"

// The machine's sound device. Where there is none, or when it goes away, silence that keeps real
// time takes its place, which is logged once; the device is looked for again when something is
// started later. Takes half a second ahead of what is heard.
class DeviceOutput : public AudioOutput {
public:
    // `sinkFactory`: the GStreamer element that sounds.
    DeviceOutput(std::string sinkFactory, std::function<void()> failed);
    ~DeviceOutput() override;

    bool start(const AudioFormat& format) override;
    void stop() override;
    bool hasRoom() override;
    void write(const char* data, qint64 bytes) override;
    qint64 heardFrames() override;
    void setPaused(bool paused) override;
    void setVolume(int volume) override;
    bool fallBack() override;

    bool isSilent() const { return m_silent; }

private:
    static GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer self);

    bool openDevice();
    bool openSilence();
    bool open(const char* sinkFactory);
    void close();
    bool reopen();
    void play();
    qint64 runningFrames() const;

    const std::string m_sinkFactory;
    const std::function<void()> m_failed;
    bool m_silent = false;
    bool m_silenceSaid = false;
    std::chrono::steady_clock::time_point m_lastLook;
    bool m_running = false;
    bool m_paused = false;
    int m_volume = MaxVolume;
    AudioFormat m_format;

    GstElementPtr m_pipeline;
    GstElement* m_source = nullptr;   // the pipeline's
    GstElement* m_loudness = nullptr; // the pipeline's
    GstElement* m_sink = nullptr;     // the pipeline's
    std::atomic<bool> m_broken{false};
    std::atomic<bool> m_taken{false}; // some sound was taken since the pipeline started

    // What follows is shared between the feeder's and the worker's thread.
    mutable std::mutex m_mutex;
    qint64 m_written = 0; // frames since start()
    qint64 m_base = 0;    // of these, before this pipeline ran
    qint64 m_late = 0;    // frames by which the pipeline's time ran on while it had nothing to play
    qint64 m_heard = 0;
};
