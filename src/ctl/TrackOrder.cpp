#include "TrackOrder.h"

#include <algorithm>
#include <numeric>

#include <QCollator>
#include <QJsonArray>
#include <QSet>

namespace {

struct FieldRow {
    const char* name;
    TrackOrder::Field field;
};
constexpr FieldRow Fields[] = {{"title", TrackOrder::Field::Title},
                               {"artist", TrackOrder::Field::Artist},
                               {"album", TrackOrder::Field::Album},
                               {"duration", TrackOrder::Field::Duration}};

QJsonObject tagsOf(const QJsonObject& row) {
    return row.value(QStringLiteral("mediaData"))
        .toObject()
        .value(QStringLiteral("metaData"))
        .toObject();
}

QString address(const QJsonObject& row) {
    return row.value(QStringLiteral("mediaData"))
        .toObject()
        .value(QStringLiteral("resources"))
        .toArray()
        .at(0)
        .toObject()
        .value(QStringLiteral("uri"))
        .toString();
}

QString withoutAccents(const QString& text) {
    QString plain;
    for (const QChar c : text.normalized(QString::NormalizationForm_D)) {
        if (c.category() != QChar::Mark_NonSpacing)
            plain.append(c);
    }
    return plain;
}

QCollator makeCollator() {
    // The plain locale would compare code by code.
    const QLocale system = QLocale::system();
    QCollator collator(system.language() == QLocale::C ? QLocale(QLocale::English) : system);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

// A text or number to sort by, read from its row once.
class SortKey {
public:
    SortKey(const QCollator& collator, const QString& text)
        : m_isMissing(text.isEmpty()), m_text(collator.sortKey(withoutAccents(text))) {}
    SortKey(const QCollator& collator, double number)
        : m_isMissing(number <= 0), m_text(collator.sortKey(QString())), m_number(number) {}

    bool isMissing() const { return m_isMissing; }
    // Below 0: this one first.
    int compare(const SortKey& other, bool reversed = false) const {
        if (m_isMissing || other.m_isMissing)
            return int(m_isMissing) - int(other.m_isMissing);
        const int texts = m_text.compare(other.m_text);
        const int found =
            texts ? texts : int(m_number > other.m_number) - int(m_number < other.m_number);
        return reversed ? -found : found;
    }

private:
    bool m_isMissing;
    QCollatorSortKey m_text;
    double m_number = 0;
};

// What a row is sorted by, the most important first.
QVector<SortKey> keysOf(const QJsonObject& row, TrackOrder::Field by, const QCollator& collator) {
    const QJsonObject meta = tagsOf(row);
    const auto text = [&](const char* name) {
        return SortKey(collator, meta.value(QLatin1String(name)).toString());
    };
    const auto number = [&](const char* name) {
        return SortKey(collator, meta.value(QLatin1String(name)).toDouble());
    };
    const SortKey title(collator, row.value(QStringLiteral("title")).toString());
    // Two albums of one name lie in two folders.
    const SortKey folder(collator, address(row).section(QLatin1Char('/'), 0, -2));
    switch (by) {
    case TrackOrder::Field::Title:
        return {title};
    case TrackOrder::Field::Artist:
        return {text("artist"), text("album"), folder, number("trackNumber"), title};
    case TrackOrder::Field::Album:
        return {text("album"), folder, number("trackNumber"), title};
    case TrackOrder::Field::Duration:
        return {number("duration")};
    }
    return {};
}

} // namespace

const TrackOrder::Field* TrackOrder::field(const QString& name) {
    const auto* row =
        std::find_if(std::begin(Fields), std::end(Fields),
                     [&name](const FieldRow& one) { return name == QLatin1String(one.name); });
    return row == std::end(Fields) ? nullptr : &row->field;
}

QString TrackOrder::names() {
    QStringList names;
    for (const FieldRow& row : Fields)
        names.append(QLatin1String(row.name));
    return names.join(QStringLiteral(", "));
}

QList<int> TrackOrder::sorted(const QVector<QJsonObject>& rows, Field by, bool reversed) {
    const QCollator collator = makeCollator();
    QVector<QVector<SortKey>> keys;
    keys.reserve(rows.size());
    for (const QJsonObject& row : rows)
        keys.append(keysOf(row, by, collator));
    QVector<int> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&keys, reversed](int left, int right) {
        const QVector<SortKey>& a = keys.at(left);
        const QVector<SortKey>& b = keys.at(right);
        for (int i = 0; i < a.size(); ++i) {
            if (const int found = a.at(i).compare(b.at(i), reversed && i == 0))
                return found < 0;
        }
        return false;
    });
    return order.toList();
}

QList<int> TrackOrder::duplicates(const QVector<QJsonObject>& rows) {
    QSet<QString> seen;
    QList<int> found;
    for (int i = 0; i < rows.size(); ++i) {
        const QString one = address(rows.at(i));
        if (one.isEmpty())
            continue;
        if (seen.contains(one))
            found.append(i);
        seen.insert(one);
    }
    return found;
}
