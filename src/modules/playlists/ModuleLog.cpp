#include "ModuleLog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QLocale>

log4cplus::Logger& moduleLog() {
    static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayLists"));
    return logger;
}

QString loggedNumber(int number) {
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(number);
}

QString loggedText(const QString& text, int max) {
    if (text.size() <= max)
        return text;
    const int kept = text.at(max - 1).isHighSurrogate() ? max - 1 : max;
    return text.left(kept) + QStringLiteral("… (%1 more)").arg(loggedNumber(text.size() - kept));
}

QString loggedList(int size, const std::function<QString(int)>& textOf, const QString& separator) {
    QString list;
    for (int i = 0; i < size; ++i) {
        const QString element = textOf(i);
        if (i == 0) {
            list = loggedText(element, MaxLoggedList);
        } else if (list.size() + separator.size() + element.size() <= MaxLoggedList) {
            list += separator + element;
        } else {
            list += separator + QStringLiteral("… and %1 more").arg(loggedNumber(size - i));
            break;
        }
    }
    return list;
}

QString joined(const QList<int>& numbers) {
    return loggedList(numbers.size(), [&](int i) { return QString::number(numbers.at(i)); });
}

QString joined(const QStringList& texts) {
    return loggedList(texts.size(), [&](int i) { return loggedText(texts.at(i)); });
}

namespace {

// A text of its own in quotes, with escapes.
QString jsonOf(const QVariant& scalar) {
    const QVariant cut = scalar.type() == QVariant::String ? loggedText(scalar.toString()) : scalar;
    const QByteArray array =
        QJsonDocument(QJsonArray{QJsonValue::fromVariant(cut)}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

QString jsonOfElement(const QVariant& value);

QString jsonOfList(const QVariantList& list) {
    const auto element = [&](int i) { return jsonOfElement(list.at(i)); };
    return QLatin1Char('[') + loggedList(list.size(), element, QStringLiteral(",")) +
           QLatin1Char(']');
}

QString jsonOfMap(const QVariantMap& map) {
    QStringList members;
    members.reserve(map.size());
    for (auto it = map.begin(); it != map.end(); ++it)
        members.append(jsonOf(it.key()) + QLatin1Char(':') + jsonOfElement(it.value()));
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString jsonOfElement(const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantHash:
    case QMetaType::QVariantMap:
        return jsonOfMap(value.toMap()); // sorted, so that a line is the same each time
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonOfList(value.toList());
    default:
        return jsonOf(value);
    }
}

} // namespace

QString loggedValue(const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantHash:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonOfElement(value);
    default:
        return loggedText(value.toString());
    }
}
