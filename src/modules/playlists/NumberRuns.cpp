#include "NumberRuns.h"

#include <algorithm>
#include <utility>

QVector<NumberRun> runsOf(QList<int> numbers) {
    std::sort(numbers.begin(), numbers.end());
    QVector<NumberRun> runs;
    for (int number : std::as_const(numbers)) {
        if (!runs.isEmpty() && qint64(runs.constLast().to) + 1 == number)
            runs.last().to = number;
        else
            runs.append({number, number});
    }
    return runs;
}
