#pragma once

// What the store, and the model over it, return in place of a number.
struct StoreResult {
    static constexpr int Failed = -1;
    // The store may hold no further item.
    static constexpr int LimitReached = -2;
};
