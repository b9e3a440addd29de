#pragma once

#include <memory>
#include <string>
#include <vector>

// Where the made-up music is: folders of so many tracks, each named by its number, and one track
// that lasts for ever, as nobody listens.
struct Music {
    std::string folder;
    static std::string folderOf(int size) { return "n" + std::to_string(size); }
    static std::string longTrack() { return "long.wav"; }
};

// One that keeps lists of tracks. `prepare…` is not measured and leaves what the call after it
// needs. A call returns when it is answered; false: it took longer than anybody waits, and the peer
// has to be made anew. Other failures are exceptions.
class Peer {
public:
    virtual ~Peer() = default;

    virtual std::string name() const = 0;
    virtual std::string storage() const = 0;
    // Resident memory in KiB.
    virtual long memory() const = 0;

    virtual void prepareEmpty() = 0;
    // A list of `size` tracks that plays, or rests, in its middle.
    virtual void prepareList(int size) = 0;

    virtual bool addFolder(int size) = 0;
    virtual bool addFolderInTheMiddle(int size) = 0;
    virtual bool readPage(int from) = 0;
    virtual bool removeEverySecond(int size) = 0;
    virtual bool clear() = 0;

    virtual void prepareSaving() = 0;
    virtual bool save(int size) = 0;
    virtual bool load(int size) = 0;
    // One row of the list that was saved last goes one place on.
    virtual bool editSaved(int row) = 0;

    virtual void prepareRandom(int size) = 0;
    virtual bool next() = 0;
};

constexpr int PageRows = 50;
constexpr int MostSeconds = 60;
