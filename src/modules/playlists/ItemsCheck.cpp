#include "ItemsCheck.h"

#include <algorithm>

#include <QJsonObject>

#include "CMJson.h"
#include "OrvoRoles.h"

namespace {

bool canBePlayed(const OrvoMediaData& mediaData) {
    const QList<OrvoResource> resources = mediaData.resources();
    const bool hasUri =
        std::any_of(resources.cbegin(), resources.cend(),
                    [](const OrvoResource& resource) { return !resource.uri().isEmpty(); });
    return hasUri && !mediaData.metaData().prePlayPath().isEmpty();
}

// A playlist takes audio that can be shown or can be played.
bool isAcceptable(const OrvoRoles& roles) {
    return roles.type() == OrvoRolesType::Audio &&
           (!roles.title().isEmpty() || canBePlayed(roles.mediaData()));
}

// The clock is not asked for every item, that would cost a good part of the work itself.
// And a few items are always done at once, however slow the machine is at the moment.
constexpr int BetweenLooks = 256;
// A large item counts as many: parsing it takes as long.
constexpr qint64 BytesOfMany = 1024;

} // namespace

ItemsCheck::Verdict ItemsCheck::judgeRoles(const QString& text) {
    if (text.isEmpty())
        return Verdict::NoRoles;
    // Most items have a title, and then their media data does not matter.
    const QByteArray utf8 = text.toUtf8();
    OrvoRoles roles;
    if (m_reader.read(utf8, false) && !OrvoRoles(m_reader.roles).title().isEmpty()) {
        roles = OrvoRoles(m_reader.roles);
    } else if (m_reader.read(utf8)) {
        roles = OrvoRoles(m_reader.roles);
        OrvoMediaData mediaData(m_reader.mediaData);
        mediaData.setMetaData(OrvoMetaData(m_reader.metaData));
        roles.setMediaData(mediaData);
    } else {
        const QJsonObject json = cmReadJson(utf8).object();
        for (const QString& name : {OrvoRoles::Type(), OrvoRoles::Title(), OrvoRoles::MediaData()})
            roles.setAttribute(name, json.value(name).toVariant());
    }
    return isAcceptable(roles) ? Verdict::Fine : Verdict::NotAcceptable;
}

// Its size comes first: what is too large is not even parsed.
ItemsCheck::Verdict ItemsCheck::judge(const OrvoPlayListItem& item, qint64 bytes) {
    if (bytes > m_maxItemBytes)
        return Verdict::TooLarge;
    if (!m_budget.take(bytes))
        return Verdict::TooMany;
    return judgeRoles(item.orvoRoles());
}

bool ItemsCheck::run(const QDeadlineTimer& deadline) {
    m_verdicts.reserve(m_items.size());
    qint64 sinceLook = 0;
    while (m_verdicts.size() < m_items.size()) {
        const OrvoPlayListItem& item = m_items.at(m_verdicts.size());
        const qint64 bytes = TextBudget::bytesOf(item);
        m_verdicts.append(judge(item, bytes));
        if (m_verdicts.constLast() >= Verdict::NotAcceptable)
            return true;
        sinceLook += 1 + bytes / BytesOfMany;
        if (sinceLook < BetweenLooks)
            continue;
        if (deadline.hasExpired())
            return m_verdicts.size() == m_items.size();
        sinceLook = 0;
    }
    return true;
}
