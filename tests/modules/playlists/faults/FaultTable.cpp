#include "FaultTable.h"

#include <cstdio>
#include <gtest/gtest.h>

#include <QList>
#include <QMap>

namespace {

QList<FaultRow>& rows() {
    static QList<FaultRow> all;
    return all;
}

QMap<QString, int>& lostCommits() {
    static QMap<QString, int> all;
    return all;
}

void print(const FaultRow& row) {
    std::printf("| %-34s | %6d | %9d | %5d | %7d | %6d | %5d |\n", qPrintable(row.operation),
                row.points, row.asStated, row.done, row.refused, row.partly, row.wrong);
}

class Printer : public ::testing::Environment {
public:
    void TearDown() override {
        FaultRow sum;
        sum.operation = QStringLiteral("all");
        std::printf("| operation                          | points | as stated |  done | refused |"
                    " partly | wrong |\n|---|---|---|---|---|---|---|\n");
        for (const FaultRow& row : qAsConst(rows())) {
            print(row);
            sum.points += row.points;
            sum.asStated += row.asStated;
            sum.done += row.done;
            sum.refused += row.refused;
            sum.partly += row.partly;
            sum.wrong += row.wrong;
        }
        print(sum);
        const QMap<QString, int>& lost = lostCommits();
        for (auto each = lost.cbegin(); each != lost.cend(); ++each)
            std::printf("commits lost where %s: %d\n", qPrintable(each.key()), each.value());
    }
};

// GoogleTest owns it.
const ::testing::Environment* const printer = ::testing::AddGlobalTestEnvironment(new Printer);

} // namespace

void addFaultRow(const FaultRow& row) {
    rows().append(row);
}

void noteLostCommit(const QString& fault) {
    ++lostCommits()[fault];
}
