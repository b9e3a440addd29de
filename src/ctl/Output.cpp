#include "Output.h"

#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>

#include "SafeText.h"

namespace {

void write(FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

QByteArray format(const QJsonValue& value, QJsonDocument::JsonFormat format) {
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(format);
    if (value.isArray())
        return QJsonDocument(value.toArray()).toJson(format);
    // A bare value is written as the only element of a list, without the list.
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

} // namespace

QByteArray Output::compact(const QJsonValue& value) {
    return format(value, QJsonDocument::Compact);
}

void Output::text(const QString& text) const {
    write(stdout, text.toUtf8());
}

void Output::json(const QJsonValue& value) const {
    const QByteArray text =
        format(value, m_json ? QJsonDocument::Compact : QJsonDocument::Indented);
    write(stdout, SafeText::json(text.trimmed()) + '\n');
}

void Output::line(const QString& text) const {
    write(stdout,
          (m_json ? SafeText::json(text.toUtf8()) : SafeText::forTerminal(text).toUtf8()) + '\n');
}

void Output::done(const QString& message) const {
    if (!m_json)
        Output::message(message);
}

void Output::message(const QString& message) {
    write(stderr, SafeText::forTerminal(message).toUtf8() + '\n');
}
