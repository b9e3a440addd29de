#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QString>

#include "AudioFormat.h"

// Where sound goes. Frames are counted from the last start(). Owned by the OutputFeeder, whose
// thread calls hasRoom() and write(); the worker's thread calls everything else, start() and
// fallBack() only while the feeder rests. A failure while it runs is reported through `failed`,
// once, from any thread; the worker then calls fallBack().
class AudioOutput {
public:
    virtual ~AudioOutput() = default;

    // Set when everything has to come in one format.
    virtual std::optional<AudioFormat> requiredFormat() const { return {}; }
    // Takes sound in this format from now on; what was not heard yet never will be. False when
    // there are no means for it.
    virtual bool start(const AudioFormat& format) = 0;
    // Ends what sounds, at once.
    virtual void stop() = 0;
    virtual bool hasRoom() = 0;
    // Whole frames.
    virtual void write(const char* data, qint64 bytes) = 0;
    virtual qint64 heardFrames() = 0;

    // An output that does not keep time needs neither of these: the feeder rests during a pause.
    virtual void setPaused(bool) {}
    static constexpr int MaxVolume = 100;
    // 0 to MaxVolume. What is recorded instead of heard is not changed by it.
    virtual void setVolume(int) {}
    // False when there are no means for that either.
    virtual bool fallBack() { return true; }

    // "auto": the machine's sound device, or silence in real time where there is none. "null": no
    // sound, as fast as it can. "wav=FILE": everything that sounds, into that file. Null, with
    // *error saying why, for anything else and for a file that cannot be written.
    static std::unique_ptr<AudioOutput> make(const QString& sink, std::function<void()> failed,
                                             QString* error);
};
