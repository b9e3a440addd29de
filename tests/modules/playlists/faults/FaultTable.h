#pragma once

#include <QString>

// The figures of all sweeps of this process, printed at its end.
struct FaultRow {
    QString operation;
    int points = 0;
    int asStated = 0;
    int done = 0;    // of these: done in spite of the fault
    int refused = 0; // failed, nothing changed
    int partly = 0;  // failed, and as much was done as is stated
    int wrong = 0;   // acknowledged though nothing was done
};

void addFaultRow(const FaultRow& row);

// Success was reported for an edit that its commit did not bring into the file.
void noteLostCommit(const QString& fault);
