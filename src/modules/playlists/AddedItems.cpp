#include "AddedItems.h"

#include "ControllerText.h"
#include "ItemsCheck.h"
#include "ModuleLog.h"
#include "PlayListBase.h"
#include "RepeatedLogLines.h"
#include "StoreResult.h"
#include "WantedPlaces.h"

namespace {

using Verdict = ItemsCheck::Verdict;

AddedItems none(const QString& reason) {
    AddedItems result;
    result.text = reason;
    return result;
}

QString listText(const QList<OrvoPlayListItem>& items) {
    return loggedList(items.size(), [&](int i) { return loggedValue(items.at(i).toHash()); });
}

// Why an item of that verdict refuses all; empty when it does not.
QString refusalOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Fine:
    case Verdict::NoRoles:
        break;
    case Verdict::NotAcceptable:
        return CONTROLLER_TEXT("Missing title or type==audio or [resource uri and prePlayPath]");
    case Verdict::TooLarge:
        return CONTROLLER_TEXT("Item is too large.");
    case Verdict::TooMany:
        return AddedItems::tooManyText();
    }
    return {};
}

// `reason` says why the places cannot be taken.
int addAtPlaces(PlayListBase* pl, const QList<OrvoPlayListItem>& items, const WantedPlaces& wanted,
                QString& reason) {
    const int size = pl->getSize();
    ItemPlaces places;
    places.positions = wanted.positions;
    places.allOrNothing = wanted.kind == WantedPlaces::Kind::OneEach;
    if (places.allOrNothing && wanted.positions.size() != items.size()) {
        reason = AddedItems::oneEachText();
        return StoreResult::Failed;
    }
    if (wanted.positions.last() < size + items.size()) {
        while (places.positions.size() < items.size())
            places.positions.append(places.positions.last() + 1);
    }
    if (!places.fit(size, items.size())) {
        LOG4CPLUS_ERROR(moduleLog(), "Position is not in valid range");
        reason = CONTROLLER_TEXT("Position is not in valid range.");
        return StoreResult::Failed;
    }
    return pl->addItemsAt(places, items);
}

AddedItems addAccepted(PlayListBase* pl, const QList<OrvoPlayListItem>& items,
                       OrvoPlayListAddPosition::Enum mode, const WantedPlaces& wanted) {
    const int sizeBefore = pl->getSize();
    AddedItems result;
    result.first = wanted.kind == WantedPlaces::Kind::None
                       ? pl->addItems(mode, items)
                       : addAtPlaces(pl, items, wanted, result.text);
    const int res = result.first < 0 ? result.first : pl->getSize() - sizeBefore;
    LOG4CPLUS_DEBUG(moduleLog(), "addItems() res: " << res);
    if (res == StoreResult::LimitReached)
        return none(QStringLiteral("%1 %2")
                        .arg(CONTROLLER_TEXT("Unable to add more items to the playlist."))
                        .arg(CONTROLLER_TEXT("Items reached limit.")));
    if (res < 1)
        return none(result.text);
    result.count = res;
    result.text = CONTROLLER_TEXT("%1 items added.").arg(res);
    LOG4CPLUS_DEBUG(moduleLog(), "added " << res << " items");
    return result;
}

} // namespace

AddedItems AddedItems::add(PlayListBase* pl, const ItemsCheck& check,
                           OrvoPlayListAddPosition::Enum mode, const WantedPlaces& wanted) {
    const QList<OrvoPlayListItem>& items = check.items();
    LOG4CPLUS_TRACE(moduleLog(), "itemList: (" << listText(items) << ")");
    QList<OrvoPlayListItem> accepted;
    accepted.reserve(items.size());
    RepeatedLogLines leftOut(moduleLog(), log4cplus::WARN_LOG_LEVEL);
    for (int i = 0; i < items.size(); ++i) {
        const Verdict verdict = check.verdict(i);
        const QString refusal = refusalOf(verdict);
        if (!refusal.isEmpty())
            return none(refusal);
        if (verdict == Verdict::Fine)
            accepted.append(items.at(i));
        else if (leftOut.next())
            LOG4CPLUS_WARN(moduleLog(),
                           "Invalid file, missing roles: " << loggedText(items.at(i).url()));
    }
    leftOut.end();
    if (accepted.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "no playitem found");
        return none(CONTROLLER_TEXT("No playitem found."));
    }
    if (wanted.kind == WantedPlaces::Kind::OneEach && accepted.size() != items.size())
        return none(oneEachText());
    return addAccepted(pl, accepted, mode, wanted);
}

QString AddedItems::tooManyText() {
    return CONTROLLER_TEXT("Too many items at once.");
}

QString AddedItems::oneEachText() {
    return CONTROLLER_TEXT("Please give one position for each item.");
}
