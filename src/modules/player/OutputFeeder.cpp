#include "OutputFeeder.h"

#include <algorithm>

namespace {
constexpr std::chrono::milliseconds Tick{20};
} // namespace

OutputFeeder::OutputFeeder(std::unique_ptr<AudioOutput> output, EngineEvents& events)
    : m_events(events), m_output(std::move(output)), m_thread([this] { run(); }) {}

OutputFeeder::~OutputFeeder() {
    {
        const Rest rest(*this);
        m_quit = true;
    }
    m_thread.join();
    m_output->stop();
}

OutputFeeder::Rest::Rest(OutputFeeder& feeder) : m_feeder(feeder), m_lock(feeder.m_mutex) {
    m_feeder.m_restWanted = true;
    m_feeder.m_wake.wait(m_lock, [this] { return !m_feeder.m_busy; });
}

OutputFeeder::Rest::~Rest() {
    m_feeder.m_restWanted = false;
    m_lock.unlock();
    m_feeder.m_wake.notify_all();
}

void OutputFeeder::newEpoch() {
    ++m_epoch;
    m_sourceDone = m_sourceBroke = m_drainReported = false;
}

bool OutputFeeder::begin(std::shared_ptr<TrackDecoder> decoder, qint64 positionMs) {
    m_decoder = std::move(decoder);
    m_format = m_decoder->format();
    m_written = m_itemStart = 0;
    m_itemPosition = positionMs;
    newEpoch();
    if (m_output->start(*m_format))
        return true;
    breakOff();
    return false;
}

// Nothing can be heard of what plays.
void OutputFeeder::breakOff() {
    m_events.push({EngineEvent::Kind::SourceFailed, m_decoder->id(), m_epoch,
                   "the sound output cannot be opened"});
    m_decoder.reset();
    m_format.reset();
}

bool OutputFeeder::start(std::shared_ptr<TrackDecoder> decoder, qint64 positionMs) {
    const Rest rest(*this);
    if (positionMs > 0 && !decoder->seek(positionMs))
        positionMs = 0;
    return begin(std::move(decoder), positionMs);
}

void OutputFeeder::continueWith(std::shared_ptr<TrackDecoder> decoder) {
    const Rest rest(*this);
    m_decoder = std::move(decoder);
    m_itemStart = m_written;
    m_itemPosition = 0;
    newEpoch();
}

bool OutputFeeder::seek(qint64 ms) {
    const Rest rest(*this);
    if (!m_decoder || !m_decoder->seek(ms))
        return false;
    return begin(m_decoder, ms);
}

void OutputFeeder::stop() {
    const Rest rest(*this);
    m_decoder.reset();
    m_format.reset();
    m_output->stop();
    m_written = m_itemStart = m_itemPosition = 0;
    newEpoch();
}

void OutputFeeder::setPaused(bool paused) {
    {
        const std::lock_guard lock(m_mutex);
        m_paused = paused;
        m_output->setPaused(paused);
    }
    m_wake.notify_all();
}

void OutputFeeder::setVolume(int volume) {
    const std::lock_guard lock(m_mutex);
    m_output->setVolume(volume);
}

void OutputFeeder::fallBack() {
    const Rest rest(*this);
    if (!m_output->fallBack() && m_decoder)
        breakOff();
}

qint64 OutputFeeder::position() const {
    const std::lock_guard lock(m_mutex);
    if (!m_decoder)
        return 0;
    const qint64 frames = std::max<qint64>(0, m_output->heardFrames() - m_itemStart);
    return m_itemPosition + frames * 1000 / m_format->rate;
}

std::optional<AudioFormat> OutputFeeder::format() const {
    const std::lock_guard lock(m_mutex);
    return m_format ? m_format : m_output->requiredFormat();
}

void OutputFeeder::run() {
    Lock lock(m_mutex);
    while (!m_quit) {
        if (m_restWanted || !m_decoder || m_paused)
            m_wake.wait(lock);
        else if (m_sourceDone)
            waitForTheEndToBeHeard(lock);
        else if (!m_output->hasRoom())
            m_wake.wait_for(lock, Tick);
        else
            carry(lock);
    }
}

void OutputFeeder::carry(Lock& lock) {
    TrackDecoder& decoder = *m_decoder; // stays while the thread is busy
    const int frameBytes = m_format->frameBytes();
    m_busy = true;
    lock.unlock();
    const TrackDecoder::Pulled pulled = decoder.pull(m_pcm);
    if (pulled == TrackDecoder::Pulled::Sound)
        m_output->write(m_pcm.data(), qint64(m_pcm.size()));
    lock.lock();
    m_busy = false;
    if (m_restWanted)
        m_wake.notify_all();

    if (pulled == TrackDecoder::Pulled::Sound)
        m_written += qint64(m_pcm.size()) / frameBytes;
    m_sourceBroke = pulled == TrackDecoder::Pulled::Failed;
    m_sourceDone = m_sourceBroke || pulled == TrackDecoder::Pulled::Ended;
    if (pulled == TrackDecoder::Pulled::Ended)
        m_events.push({EngineEvent::Kind::SourceEnded, decoder.id(), m_epoch, {}});
}

void OutputFeeder::waitForTheEndToBeHeard(Lock& lock) {
    if (m_drainReported) {
        m_wake.wait(lock);
        return;
    }
    if (m_output->heardFrames() < m_written) {
        m_wake.wait_for(lock, Tick);
        return;
    }
    m_drainReported = true;
    if (m_sourceBroke)
        m_events.push(
            {EngineEvent::Kind::SourceFailed, m_decoder->id(), m_epoch, m_decoder->error()});
    else
        m_events.push({EngineEvent::Kind::SourceDrained, m_decoder->id(), m_epoch, {}});
}
