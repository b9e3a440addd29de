#include <cstddef>
#include <cstdint>
#include <cstring>

#include <QCoreApplication>

#include "FuzzTarget.h"
#include "QuietLog.h"

// The entry points that libFuzzer calls; FUZZ_TARGET is the name of the one target that this
// program has.

namespace {
void (*run)(const QByteArray&) = nullptr;
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    // Both live until the process ends: libFuzzer leaves it by exit().
    static QuietLog log;
    static QCoreApplication app(*argc, *argv);
    for (const FuzzTarget& target : FuzzTarget::all()) {
        if (std::strcmp(target.name, FUZZ_TARGET) == 0)
            run = target.run;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of exactly that size, so that a read beyond its end is noticed.
    run(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
