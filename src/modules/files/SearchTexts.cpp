#include "SearchTexts.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// Longer rows of parts are dates and numbers: a person who types them keeps their punctuation.
constexpr int MaxJoinedParts = 4;

// Letters that are no others with an accent, as people type them who have them not on their keys.
struct TypedRow {
    char16_t letter;
    const char* typed;
};
constexpr TypedRow TypedLetters[] = {{u'æ', "ae"}, {u'đ', "d"},  {u'ð', "d"}, {u'ł', "l"},
                                     {u'ø', "o"},  {u'œ', "oe"}, {u'þ', "th"}};

QString typedText(const QString& folded) {
    QString typed;
    typed.reserve(folded.size());
    for (const QChar each : folded) {
        const auto row =
            each.unicode() < 0x80
                ? std::end(TypedLetters)
                : std::find_if(std::begin(TypedLetters), std::end(TypedLetters),
                               [each](const TypedRow& known) { return each == known.letter; });
        if (row == std::end(TypedLetters))
            typed += each;
        else
            typed += QLatin1String(row->typed);
    }
    return typed;
}

// Letters, digits and blanks, the rest as line feeds.
QString foldedText(const QString& text) {
    QString folded;
    for (const QChar each : text.normalized(QString::NormalizationForm_KD)) {
        if (each.isLetterOrNumber() || each.isSurrogate())
            folded += each;
        else if (each.isSpace())
            folded += QLatin1Char(' ');
        else if (!each.isMark())
            folded += QLatin1Char('\n');
    }
    // By way of upper case, where "ß" is "SS".
    return typedText(folded.toUpper().toCaseFolded());
}

QStringList foldedWords(const QString& text, bool withWhole) {
    QStringList words;
    for (const QString& word : foldedText(text).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QStringList parts = word.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        words += parts;
        if (withWhole && parts.size() > 1 && parts.size() <= MaxJoinedParts)
            words.append(parts.join(QString()));
    }
    return words;
}

} // namespace

QStringList SearchTexts::words(const QString& text) {
    return foldedWords(text, true);
}

QStringList SearchTexts::typedWords(const QString& text) {
    return foldedWords(text, false);
}

void SearchTexts::add(const QString& text) {
    m_starts.push_back(quint32(m_bytes.size()));
    for (const QString& word : words(text)) {
        m_bytes += ' ';
        m_bytes += word.toUtf8().constData();
    }
    m_bytes += '\n';
}

std::vector<quint8> SearchTexts::match(const QString& word) const {
    std::vector<quint8> matches(m_starts.size(), None);
    const std::string wanted = word.toUtf8().toStdString();
    const char* const begin = m_bytes.data();
    const char* const end = begin + m_bytes.size();
    const char* from = begin;
    std::size_t text = 0;
    while (!wanted.empty() && from < end) {
        const auto* found = static_cast<const char*>(
            memmem(from, std::size_t(end - from), wanted.data(), wanted.size()));
        if (!found)
            break;
        const auto place = quint32(found - begin);
        const auto next =
            std::upper_bound(m_starts.begin() + std::ptrdiff_t(text), m_starts.end(), place);
        text = std::size_t(next - m_starts.begin()) - 1;
        const bool atStart = found[-1] == ' ';
        if (atStart || matches[text] == None)
            matches[text] = atStart ? AtStart : Inside;
        // Nothing better is to be found in a text that has it at a start.
        from = !atStart ? found + 1 : next == m_starts.end() ? end : begin + *next;
    }
    return matches;
}
