#pragma once

#include "PlayLogicFixture.h"
#include "Random.h"
#include "TestClock.h"

// A list that plays and is edited at random. A seed repeats it: what is drawn, and with the clock
// standing the shuffle orders, too.
class RandomListFixture : public PlayLogicFixture {
protected:
    int below(int bound) { return m_random.below(bound); }

    // An empty list instead of the one before, which is deleted.
    void takeEmptyList();
    // One to `most`. By titles they are told apart: the uid of a removed item may be given to the
    // next one.
    QList<OrvoPlayListItem> newItems(int most);
    // Inserts them at positions all over the list.
    int insertAnywhere(const QList<OrvoPlayListItem>& items);
    // The numbers of the list, those from `from` on in any order.
    QList<int> anyOrder(int from = 0);

    QStringList titles() { return titlesOf(m_list->getItems(0, m_list->getSize())); }
    static QStringList titlesOf(const QList<OrvoPlayListItem>& items);

    PlayListBase* m_list = nullptr;
    Random m_random;
    TestClock m_clock{1};

private:
    int m_lastTitle = 0;
};
