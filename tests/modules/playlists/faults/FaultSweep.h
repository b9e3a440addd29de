#pragma once

#include <functional>

#include "../model/ModelFixture.h"
#include "FaultVfs.h"

struct FaultRow;

// What one operation may come to when the store's files fail.
struct Outcome {
    // What it returns or answers. With `isPrefix`, also any beginning of that: what could be read.
    QString result;
    // Its lines at error level, without those of the statement wrapper.
    QStringList errors;
    enum class Effect { None, Done, Partly };
    Effect effect = Effect::None;
    // For Partly: what the operation has done by then.
    const char* partly = "";
    bool isPrefix = false;
    // Counted apart: the answer says done, the store has nothing.
    bool wronglyAcknowledged = false;
};

struct Operation {
    const char* name;
    std::function<QString()> run;
    // The first is the one without a fault.
    QList<Outcome> outcomes;
    // Puts into the file what the operation needs.
    const char* prepare = "";
    // The last played position, or a size that could not be read, may be made up for only by the
    // next operation.
    bool mayTrail = false;
    int itemsLimit = 0;
    // Errors are not compared: another layer's test does.
    bool anyErrors = false;
};

// Runs operations once for each fault at each point, on one store after the other:
//   0 the queue, empty
//   1 "Party", six tracks, the fourth (3) played last
//   2 "Quiet", two tracks, in collection 1 "Box"; collection 2 "Shelf" is empty
class FaultSweep : public ModelFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    void sweep(const Operation& operation);
    // Called when a store stands as it was, for what a test holds of it.
    virtual void onRestored() {}
    // An operation after the fault, and back: the content is as before.
    virtual void useAgain();

    bool useModel = true;
    PlayListRecord party;
    PlayListRecord quiet;
    CollectionRecord box;
    CollectionRecord shelf;

    static QList<OrvoPlayListItem> newItems(int count);

    // A whole store, as the operation wants it.
    void restore(const Operation& operation);
    // Playlists and collections as the model has them, and as the file has them.
    QStringList inMemory();
    QStringList inFile();
    QString stateErrors(bool unusedItems);
    static const QList<Fault>& faults();

private:
    QStringList contents();
    bool visit(const Operation& operation, const Fault& fault, int nth);

    QByteArray m_image;
    FaultRow* m_row = nullptr;
    bool m_dirty = true;
    QStringList m_before;
    QStringList m_done;
    QHash<QString, QStringList> m_partly;
};
