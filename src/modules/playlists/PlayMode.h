#pragma once

#include <optional>

#include "OrvoPlayListEnums.h"

// Shuffle and repeat, which the player knows as one number:
//
//               off  one  all   (repeat)
//   in order     0    2    4
//   shuffled     1    3    5
struct PlayMode {
    // The same numbers as in the command that sets them; a play mode has no more than these.
    enum RepeatMode : int {
        RepeatOff = OrvoPlayListPlRepeatMode::Off,
        RepeatOne = OrvoPlayListPlRepeatMode::One,
        RepeatAll = OrvoPlayListPlRepeatMode::All
    };

    bool isShuffled;
    RepeatMode repeat;

    // None where the number is none of these: it comes with a request.
    static constexpr std::optional<PlayMode> fromNumber(int number) {
        if (number < OrvoPlayerPlayMode::Normal || number > OrvoPlayerPlayMode::ShuffleRepeatAll)
            return std::nullopt;
        return PlayMode{number % 2 == 1, RepeatMode(number / 2)};
    }
    constexpr OrvoPlayerPlayMode::Enum number() const {
        return OrvoPlayerPlayMode::Enum(2 * repeat + (isShuffled ? 1 : 0));
    }
};
