#pragma once

#include <QStringList>

// A command line up to the cursor, taken apart as a shell does it: blanks between words, quotes and
// backslashes around what belongs to one. The last word is the one at the cursor, perhaps empty.
//   show Sunday\ mo   gives {"show", "Sunday mo"}
struct ShellLine {
    QStringList words;
    bool endsInQuotes = false;

    static ShellLine parse(const QString& line);
};
