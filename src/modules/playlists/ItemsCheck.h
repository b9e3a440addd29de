#pragma once

#include <QDeadlineTimer>
#include <QList>
#include <QVector>

#include "ItemRolesReader.h"
#include "OrvoPlayListItem.h"
#include "PlayListLimits.h"
#include "TextBudget.h"

// Which of some items a playlist takes. Parsing the roles of thousands of items takes longer than
// other clients should wait, so the check can be made in slices. A value of the command that adds
// them; worker's thread; what is not acceptable is a verdict, nothing here fails.
class ItemsCheck {
public:
    enum class Verdict : char {
        Fine,
        NoRoles, // left out; the verdicts from here on decide about all
        NotAcceptable,
        TooLarge, // this item
        TooMany,  // with this one the items together are too large
    };

    ItemsCheck(const QList<OrvoPlayListItem>& items, const PlayListLimits& limits)
        : m_items(items), m_maxItemBytes(limits.maxItemBytes), m_budget(limits.maxAdditionBytes) {}

    // Goes on with the check until the time is over. True when it is done. Ends at the first item
    // whose verdict decides about all.
    bool run(const QDeadlineTimer& deadline);

    const QList<OrvoPlayListItem>& items() const { return m_items; }
    // Of the items up to the one that ended the check.
    Verdict verdict(int index) const { return m_verdicts.at(index); }

private:
    Verdict judge(const OrvoPlayListItem& item, qint64 bytes);
    Verdict judgeRoles(const QString& text);

    QList<OrvoPlayListItem> m_items;
    qint64 m_maxItemBytes;
    TextBudget m_budget;
    QVector<Verdict> m_verdicts;
    ItemRolesReader m_reader;
};
