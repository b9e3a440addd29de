#include "ShellLine.h"

ShellLine ShellLine::parse(const QString& line) {
    ShellLine result;
    QString word;
    bool isWord = false; // also when it is empty, as '' is
    QChar quote;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        const bool isEscape = c == QLatin1Char('\\') && quote != QLatin1Char('\'');
        if (isEscape && i + 1 < line.size()) {
            word += line.at(++i);
        } else if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            else
                word += c;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            isWord = true;
        } else if (!c.isSpace()) {
            word += c;
        } else if (isWord || !word.isEmpty()) {
            result.words.append(word);
            word.clear();
            isWord = false;
        }
    }
    result.words.append(word);
    result.endsInQuotes = !quote.isNull();
    return result;
}
