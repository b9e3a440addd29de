#include "TextTable.h"

#include "SafeText.h"

namespace {
constexpr int Gap = 2;
}

TextTable::TextTable(const QStringList& titles) {
    QStringList header;
    for (const QString& title : titles) {
        m_right.append(title.startsWith(QLatin1Char('>')));
        header.append(m_right.last() ? title.mid(1) : title);
    }
    m_rows.append(header);
}

void TextTable::addRow(const QStringList& cells) {
    QStringList row;
    for (const QString& cell : cells)
        row.append(SafeText::forTerminal(cell));
    m_rows.append(row);
}

QString TextTable::text() const {
    QVector<int> widths(m_right.size(), 0);
    for (const QStringList& row : m_rows) {
        for (int i = 0; i < widths.size(); ++i)
            widths[i] = qMax(widths.at(i), SafeText::width(row.value(i)));
    }
    QString text;
    for (const QStringList& row : m_rows) {
        QString line;
        for (int i = 0; i < widths.size(); ++i) {
            const QString cell = row.value(i);
            const QString padding(widths.at(i) - SafeText::width(cell), QLatin1Char(' '));
            line += m_right.at(i) ? padding + cell : cell + padding;
            line += QString(Gap, QLatin1Char(' '));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}
