#pragma once

#include <gtest/gtest.h>

#include "ClientFailure.h"

// The exit status that a call's failure leads to, 0 without one.
template <typename Call>
int statusOf(Call call) {
    try {
        call();
    } catch (const ClientFailure& failure) {
        EXPECT_FALSE(failure.message.isEmpty());
        return failure.status;
    }
    return 0;
}
