#pragma once

#include <QByteArray>
#include <QString>

// The file that holds the token: regular, its reader's own (or root's), and readable by no
// other user; one line of 16 to 512 printable characters without a blank.
namespace TokenFile {

// Empty when the file cannot be used; `error` says why and names it.
QByteArray read(const QString& file, QString* error);

} // namespace TokenFile
