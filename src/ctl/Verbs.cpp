#include "Verbs.h"

#include <algorithm>
#include <utility>

#include "ClientFailure.h"

namespace {

// How many letters must be put in, left out, replaced or swapped with their neighbour to make one
// word of the other.
int distance(const QString& a, const QString& b) {
    QVector<QVector<int>> table(a.size() + 1, QVector<int>(b.size() + 1));
    for (int i = 0; i <= a.size(); ++i) {
        for (int j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1,
                                    table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
        }
    }
    return table[a.size()][b.size()];
}

// The verb that these words are a slip of; empty when they are none.
QString likeliest(const QStringList& words) {
    constexpr int MaxLength = 40;
    QString best;
    // Of two that are as near, the one that explains more of the words.
    std::pair<int, int> least;
    for (const Verb& verb : Verbs::all()) {
        const QString name = QString::fromLatin1(verb.words);
        const int count = Verbs::wordsOf(verb).size();
        const QString typed = words.mid(0, count).join(QLatin1Char(' '));
        if (typed.size() > MaxLength)
            continue;
        // One slip in a short word, two in a longer one.
        const int slips = distance(typed, name);
        if (slips > std::min(2, name.size() / 3))
            continue;
        const std::pair<int, int> rank(slips, -count);
        if (best.isEmpty() || rank < least) {
            best = name;
            least = rank;
        }
    }
    return best;
}

} // namespace

QStringList Verbs::wordsOf(const Verb& verb) {
    return QString::fromLatin1(verb.words).split(QLatin1Char(' '));
}

QVector<Verb> Verbs::beginningWith(const QStringList& words) {
    QVector<Verb> found;
    for (const Verb& verb : all()) {
        if (!words.isEmpty() && wordsOf(verb).mid(0, words.size()) == words)
            found.append(verb);
    }
    return found;
}

const Verb* Verbs::find(const QStringList& words) {
    if (words.mid(0, 2) == wordsOf(completionLine()))
        return &completionLine();
    for (const Verb& verb : all()) {
        const QStringList names = wordsOf(verb);
        if (words.mid(0, names.size()) == names)
            return &verb;
    }
    return nullptr;
}

const Verb& Verbs::take(QStringList* words) {
    if (const Verb* verb = find(*words)) {
        *words = words->mid(wordsOf(*verb).size());
        return *verb;
    }
    throw unknown(*words);
}

ClientFailure Verbs::unknown(const QStringList& words) {
    if (words.isEmpty())
        return ClientFailure::usage(QStringLiteral("a verb is missing"));
    QString message =
        QStringLiteral("unknown verb \"%1\"").arg(words.mid(0, 2).join(QLatin1Char(' ')));
    const QString meant = likeliest(words);
    if (!meant.isEmpty())
        message += QStringLiteral("; did you mean \"%1\"?").arg(meant);
    return ClientFailure::usage(message);
}

void Verbs::checkCount(const Verb& verb, const Arguments& arguments) {
    if (!verb.count.allows(arguments.positional().size()))
        throw ClientFailure::usage(QStringLiteral("usage: orvoctl %1 %2")
                                       .arg(QLatin1String(verb.words), QLatin1String(verb.usage))
                                       .trimmed());
}

void VerbContext::run(const QString& function, const QJsonObject& record,
                      const QString& done) const {
    const QJsonValue result = device.command(function, record);
    if (output.isJson())
        output.json(QJsonObject{{QStringLiteral("result"), result}});
    else
        output.done(done);
}

void VerbContext::create(const QString& function) const {
    const QString name = Names::visible(arguments.at(0));
    const QJsonObject answer =
        device.command(function, {{QStringLiteral("name"), name}}).toObject();
    const QJsonValue id = answer.value(QStringLiteral("result"))
                              .toObject()
                              .value(QStringLiteral("value"))
                              .toObject()
                              .value(QStringLiteral("i32"));
    if (output.isJson())
        output.json(QJsonObject{{QStringLiteral("id"), id}});
    else
        output.line(QStringLiteral("#%1 %2").arg(id.toInt()).arg(name));
}
