#pragma once

#include <iostream>
#include <random>

#include <QtGlobal>

// The numbers of a random test. A run prints its first seed: ORVO_SEED gives it back. Each round
// has the seed after the one before it, and ORVO_ROUNDS sets how many there are.
class Random : public std::mt19937 {
public:
    using std::mt19937::mt19937;

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(*this); }

    static unsigned firstSeed() {
        bool isGiven = false;
        const int given = qEnvironmentVariableIntValue("ORVO_SEED", &isGiven);
        const unsigned seed = isGiven ? unsigned(given) : std::random_device()() & 0x3FFFFFFF;
        std::cout << "ORVO_SEED=" << seed << std::endl;
        return seed;
    }
    static int rounds(int usual) {
        bool isGiven = false;
        const int given = qEnvironmentVariableIntValue("ORVO_ROUNDS", &isGiven);
        return isGiven ? given : usual;
    }
};
