#include "CMLog.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include "CMRequest.h"

std::ostream& operator<<(std::ostream& out, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return out.write(utf8.constData(), utf8.size());
}

std::ostream& operator<<(std::ostream& out, const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantHash:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        const QJsonValue json = QJsonValue::fromVariant(value);
        const QByteArray text =
            (json.isObject() ? QJsonDocument(json.toObject()) : QJsonDocument(json.toArray()))
                .toJson(QJsonDocument::Compact);
        return out.write(text.constData(), text.size());
    }
    default:
        return out << value.toString();
    }
}

std::ostream& operator<<(std::ostream& out, const CMPath& path) {
    return out << path.toString();
}

std::ostream& operator<<(std::ostream& out, const QStringList& texts) {
    return out << texts.join(QStringLiteral(", "));
}

void cmFatal(const char* text) {
    static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Platform"));
    LOG4CPLUS_FATAL(logger, text);
    // Whoever started the process is told, wherever the log goes.
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, text);
    std::abort();
}

void cmAssertHasReply(bool hasReply, const CMPath& path) {
    if (!hasReply)
        cmFatal(("a request without a reply must be answered: " + path.toString().toStdString())
                    .c_str());
}
