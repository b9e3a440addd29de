#pragma once

#include <functional>

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "CMLog.h"

// The module's logger, "PlayLists".
log4cplus::Logger& moduleLog();

// What values have at most in a log line, in characters. Both together fit into a line of the
// host's log, so that the end of a value, which says how much is left out, is never cut off.
constexpr int MaxLoggedText = 200; // a name, an address, an answer
constexpr int MaxLoggedList = 600; // a list, its separators included

// "99,995".
QString loggedNumber(int number);

// "Sunday", a longer one "Sund… (3,996 more)".
QString loggedText(const QString& text, int max = MaxLoggedText);

// Numbers and texts as a list: "1, 2, 5", a longer one "1, 2, … and 99,998 more".
QString joined(const QList<int>& numbers);
QString joined(const QStringList& texts);
// Any list. Only the elements that are written are asked for.
QString loggedList(int size, const std::function<QString(int)>& textOf,
                   const QString& separator = QStringLiteral(", "));

// JSON whose texts and lists are cut as above; what is neither a map nor a list is its text.
QString loggedValue(const QVariant& value);
