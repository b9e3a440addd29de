#pragma once

#include <QList>
#include <QVector>

// Numbers that follow each other without a gap, both ends included.
struct NumberRun {
    int from;
    int to;
};

// 5 1 2 -> 1..2, 5..5
QVector<NumberRun> runsOf(QList<int> numbers);
