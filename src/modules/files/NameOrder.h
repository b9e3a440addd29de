#pragma once

#include <QCollator>
#include <QString>

// The order in which a person looks for names: numbers by their value, upper and lower case alike,
// accents only where all else is equal, and then by code points, so that it is the same every time.
namespace NameOrder {

// For sort keys, and to compare a few names. Not to be shared by threads.
QCollator collator();

// The same name to a person, except for case.
bool areSame(const QString& a, const QString& b);

} // namespace NameOrder
