#include "JsonText.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>

#include "PlainUnits.h"

namespace {

bool standsAsItIs(const QString& text) {
    const QChar* at = text.cbegin();
    while (text.cend() - at >= PlainUnits::Block && PlainUnits::arePlain(PlainUnits::load(at)))
        at += PlainUnits::Block;
    return std::all_of(at, text.cend(), [](QChar character) {
        return character >= QLatin1Char(' ') && character != QLatin1Char('"') &&
               character != QLatin1Char('\\') && !character.isSurrogate();
    });
}

} // namespace

JsonText& JsonText::operator<<(const char* json) {
    m_text += QLatin1String(json);
    return *this;
}

JsonText& JsonText::operator<<(qint64 number) {
    m_text += QString::number(number);
    return *this;
}

JsonText& JsonText::operator<<(const QString& text) {
    if (standsAsItIs(text)) {
        m_text += QLatin1Char('"');
        m_text += text;
        m_text += QLatin1Char('"');
    } else {
        // Qt knows how the others are written.
        const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        m_text += QString::fromUtf8(list.constData() + 1, list.size() - 2);
    }
    return *this;
}
