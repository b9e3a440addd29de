#pragma once

#include <QString>

// Why a verb ended early: the exit status and the line for stderr. Thrown by value, caught in main.
struct CtlFailure {
    enum Status { Refused = 1, Usage = 2, Unreadable = 2 };

    Status status;
    QString message;
    bool wrongUse = false; // and the help would help

    static CtlFailure refused(const QString& message) { return {Refused, message}; }
    static CtlFailure usage(const QString& message) { return {Usage, message, true}; }
    static CtlFailure unreadable(const QString& message) { return {Unreadable, message}; }
};
