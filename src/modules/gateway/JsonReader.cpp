#include "JsonReader.h"

#include <QJsonObject>

#include "CMJson.h"

namespace {

// Maps become hashes on the way. False when it goes too deep.
bool convert(const QVariant& value, int depth, QVariant* result) {
    if (depth > JsonReader::MaxDepth)
        return false;
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QVariantMap: {
        const auto& map = *static_cast<const QVariantMap*>(value.constData());
        QVariantHash hash;
        hash.reserve(map.size());
        for (auto it = map.begin(); it != map.end(); ++it) {
            if (!convert(it.value(), depth + 1, &hash[it.key()]))
                return false;
        }
        *result = hash;
        return true;
    }
    case QMetaType::QVariantList: {
        QVariantList list = value.toList();
        for (QVariant& element : list) {
            const QVariant original = element;
            if (!convert(original, depth + 1, &element))
                return false;
        }
        *result = list;
        return true;
    }
    case QMetaType::Nullptr:
        *result = QVariant();
        return true;
    default:
        *result = value;
        return true;
    }
}

} // namespace

bool JsonReader::readObject(const QByteArray& text, QVariantHash* object, QString* reason) {
    QJsonParseError error;
    const QJsonDocument document = cmReadJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        *reason = QStringLiteral("The body is no JSON: %1 at byte %2.")
                      .arg(error.errorString())
                      .arg(error.offset);
        return false;
    }
    if (!document.isObject()) {
        *reason = QStringLiteral("The body must be a JSON object.");
        return false;
    }
    QVariant value;
    if (!convert(document.toVariant(), 1, &value)) {
        *reason = QStringLiteral("The body is nested too deeply.");
        return false;
    }
    *object = value.toHash();
    return true;
}
