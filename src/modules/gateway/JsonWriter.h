#pragma once

#include <rapidjson/writer.h>

#include <QByteArray>
#include <QVariant>

#include "JsonBuffer.h"
#include "QtTextEncoding.h"

// Writes one record as JSON: hashes with their keys in order, so that the same record always gives
// the same text; translatable texts as their translation; paths as their text; whole numbers as
// whole numbers. What has no JSON form is null. A value on the caller's stack; what is longer than
// the limit is not made whole and leaves it full.
class JsonWriter {
public:
    static constexpr int DefaultMaxBytes = 64 * 1024 * 1024;

    explicit JsonWriter(int maxBytes = DefaultMaxBytes) : m_buffer(maxBytes), m_json(m_buffer) {}
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void beginObject() { m_json.StartObject(); }
    void name(const QString& name) { value(name); }
    void endObject() { m_json.EndObject(); }
    void beginList() { m_json.StartArray(); }
    void endList() { m_json.EndArray(); }
    void null() { m_json.Null(); }
    void value(const QVariant& value);
    void value(const QString& text);
    void value(qint64 number) { m_json.Int64(number); }

    // More than the limit was written. What comes now costs next to nothing.
    bool isFull() const { return m_buffer.isFull(); }
    // What was written, nothing when that was too much. Ends the writing.
    QByteArray text() { return m_buffer.take(); }

private:
    void value(double number);
    void hash(const QVariantHash& hash);
    void map(const QVariantMap& map);
    template <typename List>
    void list(const List& list);

    JsonBuffer m_buffer;
    rapidjson::Writer<JsonBuffer, QtTextEncoding> m_json;
    int m_depth = 0;
};
