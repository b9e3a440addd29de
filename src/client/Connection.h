#pragma once

#include <QByteArray>
#include <QStringList>
#include <QUrl>

class Arguments;

// Where the device is and what it asks for, from a program's options and its environment.
struct Connection {
    QUrl url;
    QByteArray token; // empty for a device that asks for none

    // The options that name it, each with a value: --url and --token-file.
    static const QStringList& options();
    // A usage failure when the address is none or the token cannot be read.
    static Connection of(const Arguments& arguments);
};
