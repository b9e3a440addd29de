#include "Completion.h"

#include <algorithm>

#include <QDir>
#include <QRegularExpression>

#include "BrowseRow.h"
#include "Lists.h"
#include "SafeText.h"
#include "Verbs.h"

namespace {

const QString MusicTree = QStringLiteral("files:tree/");
const QStringList PlayModes = {QStringLiteral("normal"),    QStringLiteral("shuffle"),
                               QStringLiteral("repeatOne"), QStringLiteral("shuffleRepeatOne"),
                               QStringLiteral("repeatAll"), QStringLiteral("shuffleRepeatAll")};

bool isOptionWord(const QString& word) {
    return word.startsWith(QLatin1Char('-'));
}

// The words of a usage text without its options: "PLAYLIST POS... --to POS" gives PLAYLIST, POS....
QStringList positionalsOf(const Verb& verb) {
    static const QRegularExpression options(
        QStringLiteral("\\[[^\\]]*--[^\\]]*\\]|--[a-z]+ [A-Za-z|,]+"));
    return QString::fromLatin1(verb.usage)
        .remove(options)
        .split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// The word of the usage text for an option's value: "title|artist", or a kind such as PLAYLIST.
QString valueOf(const Verb& verb, const QString& option) {
    const QRegularExpression value(QStringLiteral("--%1 ([A-Za-z|]+)").arg(option));
    return value.match(QString::fromLatin1(verb.usage)).captured(1);
}

// A name that two lists have, or that a terminal cannot show, is given by its id.
QStringList namesOf(const QVector<Named>& all) {
    QStringList names;
    for (const Named& one : all) {
        const auto sameName = [&one](const Named& other) { return other.name == one.name; };
        const bool isPlain = SafeText::forTerminal(one.name) == one.name && !one.name.isEmpty() &&
                             !one.name.startsWith(QLatin1Char('#')) && !isOptionWord(one.name);
        names.append(isPlain && std::count_if(all.begin(), all.end(), sameName) == 1
                         ? one.name
                         : QStringLiteral("#%1").arg(one.id));
    }
    return names;
}

QStringList beginningWith(const QString& begun, const QStringList& all) {
    QStringList found;
    for (const QString& one : all) {
        if (one.startsWith(begun) && !found.contains(one))
            found.append(one);
    }
    return found;
}

} // namespace

QStringList Completion::candidates(const QStringList& words) const {
    const QString begun = words.last();
    const QStringList before = words.mid(0, words.size() - 1);
    const Verb* verb = before.isEmpty() ? nullptr : Verbs::find(before);
    if (verb) {
        const QStringList behind = words.mid(Verbs::wordsOf(*verb).size());
        return beginningWith(begun, argumentsOf(*verb, behind));
    }
    QStringList next;
    for (const Verb& one : Verbs::all()) {
        const QStringList names = Verbs::wordsOf(one);
        if (names.size() > before.size() && names.mid(0, before.size()) == before)
            next.append(names.at(before.size()));
    }
    if (before.isEmpty())
        next += {QStringLiteral("--url"), QStringLiteral("--token-file"), QStringLiteral("--json"),
                 QStringLiteral("--help"), QStringLiteral("--version")};
    return beginningWith(begun, isOptionWord(begun)
                                    ? next
                                    : next.filter(QRegularExpression(QStringLiteral("^[^-]"))));
}

QStringList Completion::argumentsOf(const Verb& verb, const QStringList& words) const {
    const QString begun = words.last();
    const QString previous = words.value(words.size() - 2);
    const QString option = previous.mid(2);
    if (previous.startsWith(QLatin1String("--")) && verb.options.valued.contains(option))
        return ofKind(valueOf(verb, option), begun);
    if (isOptionWord(begun)) {
        QStringList options;
        for (const QString& name : verb.options.valued + verb.options.flags)
            options.append(QStringLiteral("--") + name);
        return options + QStringList{QStringLiteral("--json"), QStringLiteral("--help")};
    }
    int index = 0;
    for (int i = 0; i < words.size() - 1; ++i) {
        const bool isValue = i > 0 && words.at(i - 1).startsWith(QLatin1String("--")) &&
                             verb.options.valued.contains(words.at(i - 1).mid(2));
        index += !isOptionWord(words.at(i)) && !isValue;
    }
    const QStringList kinds = positionalsOf(verb);
    if (kinds.isEmpty() || (index >= kinds.size() && !kinds.last().endsWith(QLatin1String("..."))))
        return {};
    return ofKind(kinds.at(qMin(index, kinds.size() - 1)), begun);
}

// A kind is the word of a usage text.
QStringList Completion::ofKind(const QString& kind, const QString& begun) const {
    if (kind == QLatin1String("PLAYLIST") || kind == QLatin1String("SOURCE") ||
        kind == QLatin1String("TARGET"))
        return playlists();
    if (kind == QLatin1String("COLLECTION"))
        return collections();
    if (kind.startsWith(QLatin1String("FILE|FOLDER|PATH")))
        return folders(begun) + files(begun);
    if (kind == QLatin1String("PATH") || kind == QLatin1String("[PATH]"))
        return paths(begun) + folders(begun);
    if (kind == QLatin1String("FILE") || kind == QLatin1String("[TARGET]"))
        return files(begun);
    if (kind == QLatin1String("[MODE]"))
        return PlayModes;
    const QStringList values = kind.split(QLatin1Char('|'));
    return values.size() > 1 && values.first() == values.first().toLower() &&
                   values.first().at(0).isLetter()
               ? values
               : QStringList();
}

QStringList Completion::playlists() const {
    try {
        return namesOf(m_lists->playlists());
    } catch (const ClientFailure&) {
        return {};
    }
}

QStringList Completion::collections() const {
    try {
        return namesOf(m_lists->collections());
    } catch (const ClientFailure&) {
        return {};
    }
}

QStringList Completion::paths(const QString&) const {
    QStringList texts;
    try {
        const QJsonObject& all = m_device->paths();
        for (const QJsonValue& path : all)
            texts.append(path.toString());
    } catch (const ClientFailure&) {
    }
    return texts;
}

// One level of the music folder; what leads further ends with a slash.
QStringList Completion::folders(const QString& begun) const {
    if (!begun.startsWith(MusicTree))
        return MusicTree.startsWith(begun) ? QStringList(MusicTree) : QStringList();
    QStringList found;
    try {
        const auto list = m_device->tryRows(
            begun.section(QLatin1Char('/'), 0, -2),
            {QStringLiteral("type"), QStringLiteral("path"), QStringLiteral("containerType")});
        for (const QJsonObject& roles : list ? list->rows : QVector<QJsonObject>()) {
            const BrowseRow row(roles);
            if (SafeText::forTerminal(row.path()) == row.path())
                found.append(row.opens() ? row.path() + QLatin1Char('/') : row.path());
        }
    } catch (const ClientFailure&) {
    }
    return found;
}

QStringList Completion::files(const QString& begun) {
    const QString folder =
        begun.section(QLatin1Char('/'), 0, -2, QString::SectionIncludeTrailingSep);
    const bool wantsHidden = begun.mid(folder.size()).startsWith(QLatin1Char('.'));
    QStringList found;
    const QFileInfoList entries =
        QDir(folder.isEmpty() ? QStringLiteral(".") : folder)
            .entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot |
                               (wantsHidden ? QDir::Hidden : QDir::Filters()),
                           QDir::Name);
    for (const QFileInfo& entry : entries) {
        const QString name = folder + entry.fileName();
        if (SafeText::forTerminal(name) == name)
            found.append(entry.isDir() ? name + QLatin1Char('/') : name);
    }
    return found;
}
