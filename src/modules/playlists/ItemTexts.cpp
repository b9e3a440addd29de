#include "ItemTexts.h"

namespace {

constexpr int CacheLine = 64;

void fetch(const void* address) {
    __builtin_prefetch(address);
}

const std::array<QString, ItemTexts::Count>& keys() {
    using Item = OrvoPlayListItem;
    static const std::array<QString, ItemTexts::Count> all = {
        Item::Title(), Item::Artist(), Item::Album(),     Item::ArtworkUrl(),
        Item::Genre(), Item::Url(),    Item::ServiceId(), Item::OrvoRoles()};
    return all;
}

} // namespace

void ItemTexts::find(const OrvoPlayListItem& item) {
    const QVariantHash& hash = item.toHash();
    for (std::size_t i = 0; i < Count; ++i) {
        const auto found = hash.constFind(keys()[i]);
        const bool isThere = found != hash.constEnd();
        if (isThere && found->userType() == QMetaType::QString) {
            m_stored[i] = static_cast<const QString*>(found->constData());
            // Its length stands in front of its first characters.
            fetch(*reinterpret_cast<const void* const*>(m_stored[i]));
        } else {
            m_stored[i] = nullptr;
            m_converted[i] = isThere ? found->toString() : QString();
        }
    }
}

void ItemTexts::fetchAhead() const {
    for (const QString* text : m_stored) {
        if (!text)
            continue;
        const char* const begin = reinterpret_cast<const char*>(text->constData());
        const char* const end = reinterpret_cast<const char*>(text->constData() + text->size());
        for (const char* line = begin; line < end; line += CacheLine)
            fetch(line);
    }
}
