#pragma once

#include <string>
#include <vector>

#include <QString>
#include <QStringList>

// Texts to be searched for the words in them, without case, accents and punctuation: one after the
// other in one piece of memory, so that a search is a run over it. Filled, then never changed, so
// that threads share it.
class SearchTexts {
public:
    // How well a text has a word.
    enum Match : quint8 { None, Inside, AtStart };

    // The words of a text. A word with punctuation inside gives its parts and, after them, all of
    // it: "AC/DC" is "ac", "dc", "acdc", and so is found however it is spelt.
    static QStringList words(const QString& text);
    // The words that a person typed, without what repeats their parts.
    static QStringList typedWords(const QString& text);

    void add(const QString& text);
    void finish() { m_bytes.shrink_to_fit(); }
    // For each text, in the order added, how well it has the word.
    std::vector<quint8> match(const QString& word) const;

private:
    std::string m_bytes; // of each text, a blank before each word and a line feed behind the last
    std::vector<quint32> m_starts;
};
