#pragma once

#include <vector>

#include <QByteArray>
#include <QList>

#include "Baseline.h"
#include "OrvoPlayListItem.h"

// Tracks to put into lists: the same texts for the module and for the baseline, of the shape and
// length that the local-files module gives them. Made before anything is timed.
class Items {
public:
    // What stands next to each other: tracks of an album in plain ASCII, twelve to each, as a
    // folder gives them; or each of another album and artist, a third with accents and a tenth with
    // quotation marks in their titles.
    enum class Order { Albums, Mixed };

    Items(int count, Order order);
    explicit Items(const QList<OrvoPlayListItem>& items);
    // Made once and kept for all who need as many.
    static const Items& of(int count, Order order = Order::Albums);

    const QList<OrvoPlayListItem>& ours() const { return m_ours; }
    const std::vector<Baseline::Item>& forBaseline() const { return m_baseline; }
    int size() const { return m_ours.size(); }

private:
    void append(const OrvoPlayListItem& item);
    std::string_view keep(const QString& text);

    QList<OrvoPlayListItem> m_ours;
    std::vector<Baseline::Item> m_baseline;
    QList<QByteArray> m_texts;
};
