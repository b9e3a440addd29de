#pragma once

#include <QString>

struct sqlite3;

// Watches every SQLite connection that is opened while it lives; the module's own is out of a
// test's reach otherwise. Makes writes not wait for the disk. One at a time.
class StoreWatch {
public:
    StoreWatch();
    ~StoreWatch();
    StoreWatch(const StoreWatch&) = delete;
    StoreWatch& operator=(const StoreWatch&) = delete;

    // How often VACUUM has run since the watch began.
    int vacuums() const;
    // Steps of SQLite's virtual machine that the module's statements have taken since the last
    // call.
    qint64 takeSteps();
    // How often the module has run the statement of that text since it was opened.
    int runsOf(const char* sql) const;
    // A connection of the test's own: not watched.
    sqlite3* openUnwatched(const QString& file);
};
