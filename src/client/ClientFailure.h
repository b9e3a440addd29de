#pragma once

#include <QString>

// Why a verb ended early: the exit status and the line for stderr. Thrown by value, caught in main.
struct ClientFailure {
    enum Status { Refused = 1, Usage = 2, Unreadable = 2 };

    Status status;
    QString message;
    bool wrongUse = false; // and the help would help

    static ClientFailure refused(const QString& message) { return {Refused, message}; }
    static ClientFailure usage(const QString& message) { return {Usage, message, true}; }
    static ClientFailure unreadable(const QString& message) { return {Unreadable, message}; }
};
