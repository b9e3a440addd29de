#pragma once

#include <array>

#include <QString>

#include "OrvoPlayListItem.h"

// The texts of an item that is about to be stored, where they lie in the item: nothing is copied.
//
// On the stack of the addition; the item must stay as it is meanwhile.
class ItemTexts {
public:
    enum Text { Title, Artist, Album, ArtworkUrl, Genre, Url, ServiceId, OrvoRoles, Count };

    void find(const OrvoPlayListItem& item);

    const QString& operator[](Text text) const {
        const QString* stored = m_stored[text];
        return stored ? *stored : m_converted[text];
    }

private:
    std::array<const QString*, Count> m_stored{};
    // Of those that the item does not hold as texts.
    std::array<QString, Count> m_converted;
};
