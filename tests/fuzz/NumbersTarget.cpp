#include <QRegularExpression>

#include "Database.h"
#include "FuzzTarget.h"

// The numbers that a collection's row keeps as one text.
void Fuzz::numbers(const QByteArray& input) {
    const QString text = QString::fromUtf8(input);
    const QList<int> numbers = commaSeparateNumberToList(text);
    require(numbers.size() <= text.count(QLatin1Char(',')) + 1, "more numbers than pieces");

    // Written out they read the same.
    QStringList written;
    for (int number : numbers)
        written.append(QString::number(number));
    require(commaSeparateNumberToList(written.join(QLatin1Char(','))) == numbers,
            "numbers do not come back from their text");

    // Plain numbers come all, in order; what is plainly none never comes.
    static const QRegularExpression plain(QStringLiteral("^-?[0-9]{1,9}$"));
    static const QRegularExpression none(QStringLiteral("^[^0-9]*$"));
    int at = 0;
    for (const QString& piece : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (none.match(piece).hasMatch())
            continue;
        const bool isPlain = plain.match(piece).hasMatch();
        bool isNumber = false;
        const qlonglong value = piece.toLongLong(&isNumber);
        const bool taken = isNumber && at < numbers.size() && numbers.at(at) == value;
        require(!isPlain || taken, "a number is missing: " + piece);
        at += taken ? 1 : 0;
    }
    require(at == numbers.size(), "numbers of no piece");
}
