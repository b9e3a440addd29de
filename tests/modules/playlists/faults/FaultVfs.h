#pragma once

#include <QString>

// What the store does to its files. `Anything` counts them all in one row.
enum class FileAction { Read, Write, Sync, Truncate, Lock, Delete, Open, Anything };

// The nth action of a kind fails, counted from when the fault is set; `lasting`: and every later
// one.
struct Fault {
    FileAction action = FileAction::Anything;
    int code = 0;
    bool lasting = false;
    const char* name = "";
    // A lasting fault ends by itself after so many failures, like a lock whose holder lets go; 0:
    // never.
    int endsAfter = 0;
};

// Stands between SQLite and its files, the process's default VFS from install() on. Syncs are
// counted, not carried out: no test here survives a power cut.
//
// One for the process, its main thread only.
class FaultVfs {
public:
    static void install();

    static void set(const Fault& fault, int nth);
    static void clear();
    // How many actions failed since set().
    static int failures();
};
