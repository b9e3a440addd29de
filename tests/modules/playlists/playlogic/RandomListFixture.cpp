#include "RandomListFixture.h"

#include <algorithm>

#include <QCoreApplication>

void RandomListFixture::takeEmptyList() {
    if (m_list)
        manager()->deletePlayList(m_list);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_list = playList("");
}

QList<OrvoPlayListItem> RandomListFixture::newItems(int most) {
    QList<OrvoPlayListItem> items;
    for (int i = below(most); i >= 0; --i)
        items.append(makeItem(QString::number(++m_lastTitle)));
    return items;
}

int RandomListFixture::insertAnywhere(const QList<OrvoPlayListItem>& items) {
    QList<int> positions;
    for (int i = 0; i < m_list->getSize() + items.size(); ++i)
        positions.append(i);
    while (positions.size() > items.size())
        positions.removeAt(below(positions.size()));
    return m_list->addItemsAt({positions, true}, items);
}

QList<int> RandomListFixture::anyOrder(int from) {
    QList<int> order;
    for (int i = 0; i < m_list->getSize(); ++i)
        order.append(i);
    std::shuffle(order.begin() + from, order.end(), m_random);
    return order;
}

QStringList RandomListFixture::titlesOf(const QList<OrvoPlayListItem>& items) {
    QStringList titles;
    for (const OrvoPlayListItem& item : items)
        titles.append(item.title());
    return titles;
}
