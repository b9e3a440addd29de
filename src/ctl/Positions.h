#pragma once

#include <QJsonArray>
#include <QList>
#include <QStringList>

// Positions in a playlist: people count from 1, the device from 0.
namespace Positions {

// "3" and "3-7" as the device's numbers, ascending, each once. {"5", "1-3"} gives 0, 1, 2, 4. A
// usage failure when a word is no position.
QList<int> parse(const QStringList& words);
int parseOne(const QString& word);
// As commands take them.
QJsonArray json(const QList<int>& positions);

} // namespace Positions
