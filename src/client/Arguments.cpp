#include "Arguments.h"

#include "ClientFailure.h"

namespace {
// "-5" is a number, "-x" is not.
bool isOption(const QString& word) {
    return word.size() > 1 && word.startsWith(QLatin1Char('-')) && !word.at(1).isDigit();
}
} // namespace

Arguments Arguments::parse(const QStringList& words, const QStringList& valued,
                           const QStringList& flags) {
    Arguments result;
    bool optionsOver = false;
    for (int i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (optionsOver || !isOption(word)) {
            result.m_positional.append(word);
            continue;
        }
        if (word == QLatin1String("--")) {
            optionsOver = true;
            continue;
        }
        const int equals = word.indexOf(QLatin1Char('='));
        const QString name = word.startsWith(QLatin1String("--"))
                                 ? word.mid(2, equals < 0 ? -1 : equals - 2)
                                 : QString();
        if (flags.contains(name) && equals < 0) {
            result.m_options.insert(name, QString());
        } else if (valued.contains(name)) {
            if (equals < 0 && i + 1 == words.size())
                throw ClientFailure::usage(QStringLiteral("--%1 needs a value").arg(name));
            result.m_options.insert(name, equals < 0 ? words.at(++i) : word.mid(equals + 1));
        } else {
            throw ClientFailure::usage(QStringLiteral("unknown option %1").arg(word));
        }
    }
    return result;
}

int Arguments::number(const QString& name, int fallback, int least) const {
    return has(name) ? toNumber(value(name), least, QStringLiteral("--") + name) : fallback;
}

int Arguments::toNumber(const QString& text, int least, const QString& what) {
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < least)
        throw ClientFailure::usage(
            QStringLiteral("%1 must be a whole number from %2 on, not \"%3\"")
                .arg(what)
                .arg(least)
                .arg(text));
    return number;
}
