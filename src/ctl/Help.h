#pragma once

#include <QString>
#include <QVector>

struct Verb;

// The texts about the program, all from the table of verbs: its help, that of a verb, its manual
// page.
namespace Help {

QString text();
QString version();
// Usage, purpose and an example of each.
QString of(const QVector<Verb>& verbs);
// In the language of man.
QString manPage();

} // namespace Help
