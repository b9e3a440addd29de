#include "CMEnding.h"

#include <atomic>

namespace {
std::atomic<bool> isRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");
} // namespace

bool cmEndRequested() noexcept {
    return isRequested.load(std::memory_order_relaxed);
}

void cmRequestEnd() noexcept {
    isRequested.store(true, std::memory_order_relaxed);
}
