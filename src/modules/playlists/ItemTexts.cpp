#include "ItemTexts.h"

namespace {

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
        } else {
            m_stored[i] = nullptr;
            m_converted[i] = isThere ? found->toString() : QString();
        }
    }
}
