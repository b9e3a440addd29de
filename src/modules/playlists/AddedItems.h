#pragma once

#include <QString>

#include "OrvoPlayListEnums.h"

class ItemsCheck;
class PlayListBase;
struct WantedPlaces;

// What adding items to a playlist has come to. A value of the command that adds them.
struct AddedItems {
    // How many were added, the first of them at that position; -1 for none.
    int count = -1;
    int first = -1;
    // For people: how many, or why none.
    QString text;

    // Adds those of the items that the check lets pass, at the wanted places, or else by the mode.
    // None when one of them is such that all are refused.
    static AddedItems add(PlayListBase* pl, const ItemsCheck& check,
                          OrvoPlayListAddPosition::Enum mode, const WantedPlaces& wanted);

    // Reasons that are known before there are items to check.
    static QString tooManyText();
    static QString oneEachText();
};
