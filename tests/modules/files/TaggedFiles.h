#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

// Small files of every kind that TagLib reads tags of, which are all but .aac, tagged by it: sound
// by sox where it writes the kind, else no more than the header that makes it one.
namespace TaggedFiles {

QStringList suffixes();
// Tags by TagLib's names for them ("ALBUMARTIST"). False when the file cannot be made.
bool write(const QString& file, const QMap<QString, QString>& tags);
// Puts a picture into a file of any kind that has pictures.
bool addPicture(const QString& file, const QByteArray& png);
// The start of a picture, and something that makes it another one.
QByteArray png(const QByteArray& content);

} // namespace TaggedFiles
