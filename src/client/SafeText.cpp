#include "SafeText.h"

#include <QVector>

bool SafeText::isUnsafe(ushort unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) ||       // C0, DEL, C1
           unit == 0x061C || unit == 0x200E || unit == 0x200F || // direction marks
           (unit >= 0x2028 && unit <= 0x202E) || // line separators, direction embeddings
           (unit >= 0x2066 && unit <= 0x2069) || unit == 0xFEFF;
}

namespace {

QString escaped(const QString& text, const QString& kept) {
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (SafeText::isUnsafe(c.unicode()) && !kept.contains(c))
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

bool isWide(uint code) {
    return (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
           (code >= 0x1F300 && code <= 0x1FAFF) || (code >= 0x20000 && code <= 0x3FFFD);
}

bool takesNoRoom(uint code) {
    const QChar::Category category = QChar::category(code);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
           code == 0x200D;
}

} // namespace

QString SafeText::forTerminal(const QString& text) {
    return escaped(text, QString());
}

QByteArray SafeText::json(const QByteArray& json) {
    return escaped(QString::fromUtf8(json), QStringLiteral("\n")).toUtf8();
}

int SafeText::width(const QString& text) {
    int columns = 0;
    for (const uint code : text.toUcs4()) {
        if (!takesNoRoom(code))
            columns += isWide(code) ? 2 : 1;
    }
    return columns;
}
