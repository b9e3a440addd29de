#pragma once

#include <QStringList>
#include <QVector>

// A table for people: a header, rows, columns as wide as their widest cell. Cells are made safe for
// a terminal.
class TextTable {
public:
    // A title that begins with ">" gives a column that stands at its right edge, as numbers do.
    explicit TextTable(const QStringList& titles);

    void addRow(const QStringList& cells);
    // Every line ends with a newline; none ends with blanks.
    QString text() const;

private:
    QVector<QStringList> m_rows;
    QVector<bool> m_right;
};
