#include "CMLog.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include "CMRequest.h"

namespace {

std::atomic<int> maxText = 0;

// How many characters of a value are written.
int roomForText() {
    const int characters = maxText;
    return characters > 0 ? characters + 1 : std::numeric_limits<int>::max();
}

// The value with so much of its lists and texts as has room.
QJsonValue shortened(const QVariant& value, int* room) {
    --*room;
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantHash:
    case QMetaType::QVariantMap: {
        QJsonObject object;
        // Sorted, so that a line is the same each time.
        const QVariantMap map = value.toMap();
        for (auto it = map.begin(); it != map.end() && *room > 0; ++it) {
            const QString key = it.key().left(*room);
            *room -= key.size();
            object.insert(key, shortened(it.value(), room));
        }
        return object;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        QJsonArray array;
        for (const QVariant& element : value.toList()) {
            if (*room <= 0)
                break;
            array.append(shortened(element, room));
        }
        return array;
    }
    case QMetaType::QString: {
        const QString text = value.toString().left(qMax(*room, 0));
        *room -= text.size();
        return text;
    }
    default:
        return QJsonValue::fromVariant(value);
    }
}

} // namespace

void cmSetMaxLogText(int characters) {
    maxText = characters;
}

std::ostream& operator<<(std::ostream& out, const QString& text) {
    const QByteArray utf8 = text.leftRef(roomForText()).toUtf8();
    return out.write(utf8.constData(), utf8.size());
}

std::ostream& operator<<(std::ostream& out, const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantHash:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        int room = roomForText();
        const QJsonValue json = shortened(value, &room);
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
    int room = roomForText();
    for (int i = 0; i < texts.size() && room > 0; ++i) {
        if (i > 0)
            out << ", ";
        out << texts.at(i);
        room -= texts.at(i).size() + 1;
    }
    return out;
}

void cmFatal(const char* text) {
    static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Platform"));
    LOG4CPLUS_FATAL(logger, text);
    // The terminal is told, wherever the log goes.
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, text);
    std::abort();
}

void cmAssertHasReply(bool hasReply, const CMPath& path) {
    if (!hasReply)
        cmFatal(("a request without a reply must be answered: " + path.toString().toStdString())
                    .c_str());
}
