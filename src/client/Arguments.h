#pragma once

#include <QHash>
#include <QStringList>

// The words of a command line behind the verb: positional ones, options with a value (--from 3,
// --from=3) and flags. What a verb does not take is a usage failure. A value on main's stack.
class Arguments {
public:
    // `valued` and `flags` are the option names that may come, without dashes. Behind "--"
    // everything is positional.
    static Arguments parse(const QStringList& words, const QStringList& valued,
                           const QStringList& flags);

    const QStringList& positional() const { return m_positional; }
    QString at(int index) const { return m_positional.value(index); }
    bool has(const QString& name) const { return m_options.contains(name); }
    QString value(const QString& name) const { return m_options.value(name); }
    // The option as a whole number of at least `least`, or `fallback` when it is not there.
    int number(const QString& name, int fallback, int least) const;
    static int toNumber(const QString& text, int least, const QString& what);

private:
    QStringList m_positional;
    QHash<QString, QString> m_options;
};
