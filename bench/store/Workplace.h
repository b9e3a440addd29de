#pragma once

#include <memory>

#include <QByteArray>
#include <QString>

#include "floor.h"
#include "Items.h"

struct FloorClose {
    void operator()(floor_store* store) const { floor_close(store); }
};
using FloorStore = std::unique_ptr<floor_store, FloorClose>;

// A folder on one storage with two stores of the same contents: the module's, where the module
// looks for it, and the floor's.
//
// The process works inside the folder while this lives. A failure ends the process: a benchmark has
// no use for half a folder.
class Workplace {
public:
    // Lists to begin with: `lists` of `length` entries each, with the uids 1, 2, …
    struct Contents {
        int lists = 0;
        int length = 0;
        Items::Order order = Items::Order::Albums;
    };

    // Below `storage`, which is made when it is not there. With `durable` what is laid out is on
    // the disk before anything is timed.
    Workplace(const QString& storage, const Contents& contents, bool durable);
    ~Workplace();
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    // Both stores as at the beginning. None may be open.
    void restore();
    FloorStore openFloor() const;

private:
    QByteArray image(const Contents& contents) const;
    void copy(const QString& to) const;

    QString m_oldFolder;
    QString m_folder;
    bool m_durable;
    QByteArray m_image;
};
