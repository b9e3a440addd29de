#include "FaultVfs.h"

#include <sqlite3.h>

namespace {

struct State {
    sqlite3_vfs* below = nullptr;
    sqlite3_vfs shim{};
    Fault fault;
    int nth = 0; // 0: nothing fails
    int seen = 0;
    int failures = 0;
};

State& state() {
    static State instance;
    return instance;
}

// The code that the action is to fail with, SQLITE_OK when it may go on.
int faultFor(FileAction action) {
    State& s = state();
    if (s.nth == 0 || (s.fault.action != action && s.fault.action != FileAction::Anything))
        return SQLITE_OK;
    ++s.seen;
    const bool due = s.fault.lasting ? s.seen >= s.nth : s.seen == s.nth;
    if (!due || (s.fault.endsAfter > 0 && s.failures >= s.fault.endsAfter))
        return SQLITE_OK;
    ++s.failures;
    return s.fault.code;
}

// The file of the VFS below follows in the same piece of memory.
struct ShimFile {
    sqlite3_file base;
};

sqlite3_file* below(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<ShimFile*>(file) + 1);
}

int closeFile(sqlite3_file* file) {
    sqlite3_file* f = below(file);
    return f->pMethods ? f->pMethods->xClose(f) : SQLITE_OK;
}

int readFile(sqlite3_file* file, void* into, int amount, sqlite3_int64 offset) {
    const int code = faultFor(FileAction::Read);
    return code != SQLITE_OK ? code
                             : below(file)->pMethods->xRead(below(file), into, amount, offset);
}

int writeFile(sqlite3_file* file, const void* from, int amount, sqlite3_int64 offset) {
    const int code = faultFor(FileAction::Write);
    if (code == SQLITE_OK)
        return below(file)->pMethods->xWrite(below(file), from, amount, offset);
    // A write that fails may have written something.
    below(file)->pMethods->xWrite(below(file), from, amount / 2, offset);
    return code;
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    const int code = faultFor(FileAction::Truncate);
    return code != SQLITE_OK ? code : below(file)->pMethods->xTruncate(below(file), size);
}

int syncFile(sqlite3_file* /*file*/, int /*flags*/) {
    return faultFor(FileAction::Sync);
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return below(file)->pMethods->xFileSize(below(file), size);
}

int lockFile(sqlite3_file* file, int level) {
    const int code = faultFor(FileAction::Lock);
    return code != SQLITE_OK ? code : below(file)->pMethods->xLock(below(file), level);
}

int unlockFile(sqlite3_file* file, int level) {
    return below(file)->pMethods->xUnlock(below(file), level);
}

int checkReservedLock(sqlite3_file* file, int* held) {
    return below(file)->pMethods->xCheckReservedLock(below(file), held);
}

int fileControl(sqlite3_file* file, int op, void* arg) {
    return below(file)->pMethods->xFileControl(below(file), op, arg);
}

int sectorSize(sqlite3_file* file) {
    return below(file)->pMethods->xSectorSize(below(file));
}

int deviceCharacteristics(sqlite3_file* file) {
    return below(file)->pMethods->xDeviceCharacteristics(below(file));
}

// Version 1: without shared memory and mapping, as the store has it.
const sqlite3_io_methods methods = {
    1,
    closeFile,
    readFile,
    writeFile,
    truncateFile,
    syncFile,
    fileSize,
    lockFile,
    unlockFile,
    checkReservedLock,
    fileControl,
    sectorSize,
    deviceCharacteristics,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

int openFile(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    int code = faultFor(FileAction::Open);
    if (code == SQLITE_OK)
        code = state().below->xOpen(state().below, name, below(file), flags, outFlags);
    if (code == SQLITE_OK)
        file->pMethods = &methods;
    return code;
}

int deleteFile(sqlite3_vfs* /*vfs*/, const char* name, int syncFolder) {
    const int code = faultFor(FileAction::Delete);
    // The folder is synced after the file has gone.
    if (code == SQLITE_OK || code == SQLITE_IOERR_DIR_FSYNC) {
        const int deleted = state().below->xDelete(state().below, name, syncFolder);
        return code == SQLITE_OK ? deleted : code;
    }
    return code;
}

int accessFile(sqlite3_vfs* /*vfs*/, const char* name, int flags, int* result) {
    return state().below->xAccess(state().below, name, flags, result);
}

} // namespace

void FaultVfs::install() {
    State& s = state();
    if (s.below)
        return;
    s.below = sqlite3_vfs_find(nullptr);
    // What is not replaced goes to the VFS below as it is: it looks at no field of its own.
    s.shim = *s.below;
    s.shim.zName = "faults";
    s.shim.szOsFile = int(sizeof(ShimFile)) + s.below->szOsFile;
    s.shim.pNext = nullptr;
    s.shim.xOpen = openFile;
    s.shim.xDelete = deleteFile;
    s.shim.xAccess = accessFile;
    sqlite3_vfs_register(&s.shim, 1);
}

void FaultVfs::set(const Fault& fault, int nth) {
    State& s = state();
    s.fault = fault;
    s.nth = nth;
    s.seen = 0;
    s.failures = 0;
}

void FaultVfs::clear() {
    state().nth = 0;
}

int FaultVfs::failures() {
    return state().failures;
}
