// Loaded into the host before everything else (LD_PRELOAD): ends the process, as SIGKILL does, at a
// chosen operation on the store's files. The test chooses by writing into a small shared file while
// the host runs; its name is in ORVO_KILL_AT. Without it nothing happens.

#include <array>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// What the test and the host share, in this order.
struct Control {
    std::atomic<int> done;  // operations so far
    std::atomic<int> count; // the process ends at this one from now on; 0: never
    std::atomic<int> torn;  // a write that it ends at is done by half
};

Control* control() {
    static Control* const shared = [] {
        const char* name = getenv("ORVO_KILL_AT");
        const int file = name ? open(name, O_RDWR | O_CLOEXEC) : -1;
        void* memory =
            file < 0 ? MAP_FAILED
                     : mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        return memory == MAP_FAILED ? nullptr : static_cast<Control*>(memory);
    }();
    return shared;
}

bool isStore(const char* path) {
    return strstr(path, "playlists.sqlite");
}

// The store is used on one thread; other files come and go on others.
std::array<std::atomic<bool>, 4096> storeFiles;

void noteOpened(int file, const char* path) {
    if (file >= 0 && std::size_t(file) < storeFiles.size())
        storeFiles[std::size_t(file)] = isStore(path);
}

bool isStore(int file) {
    return file >= 0 && std::size_t(file) < storeFiles.size() && storeFiles[std::size_t(file)];
}

// True when the process is to end at this operation.
bool endsHere() {
    Control* shared = control();
    if (!shared)
        return false;
    ++shared->done;
    return shared->count > 0 && --shared->count == 0;
}

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void end() {
    kill(getpid(), SIGKILL);
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    static const auto real = next<int (*)(const char*, int, ...)>("open64");
    const int file = real(path, flags, mode);
    noteOpened(file, path);
    return file;
}

__attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* bytes, size_t count,
                                                        off64_t offset) {
    static const auto real = next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    if (isStore(file) && endsHere()) {
        if (control()->torn)
            real(file, bytes, count / 2, offset);
        end();
    }
    return real(file, bytes, count, offset);
}

__attribute__((visibility("default"))) int fdatasync(int file) {
    static const auto real = next<int (*)(int)>("fdatasync");
    if (isStore(file) && endsHere())
        end();
    return real(file);
}

__attribute__((visibility("default"))) int ftruncate64(int file, off64_t size) noexcept {
    static const auto real = next<int (*)(int, off64_t)>("ftruncate64");
    if (isStore(file) && endsHere())
        end();
    return real(file, size);
}

__attribute__((visibility("default"))) int unlink(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("unlink");
    if (isStore(path) && endsHere())
        end();
    return real(path);
}

} // extern "C"
