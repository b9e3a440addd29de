#pragma once

#include <QByteArray>
#include <QVariant>

// Writes records as JSON straight into one byte array: hashes with their keys in order, so that the
// same record always gives the same text; translatable texts as their translation; paths as their
// text; whole numbers as whole numbers. What has no JSON form is null. A value on the caller's
// stack; never fails.
class JsonWriter {
public:
    explicit JsonWriter(int expectedSize = 0) : m_out(expectedSize, Qt::Uninitialized) {}

    // What was written so far.
    QByteArray text();

    void beginObject() { raw('{'); }
    // `name` is plain ASCII without anything to escape.
    void member(const char* name, bool first = false);
    void member(const QString& name, bool first = false);
    void endObject() { raw('}'); }
    void raw(char c) {
        *room(1) = c;
        ++m_size;
    }
    void raw(const char* text) { raw(text, int(qstrlen(text))); }
    void raw(const QByteArray& text) { raw(text.constData(), text.size()); }

    void value(const QVariant& value);
    void value(const QString& text);
    void value(qint64 number);

    static QByteArray quoted(const QString& text);

private:
    void value(double number);
    void hash(const QVariantHash& hash);
    void map(const QVariantMap& map);
    template <typename List>
    void list(const List& list);

    void raw(const char* text, int size);
    // Where `count` more bytes can be written; good until the next call.
    char* room(int count) {
        if (m_out.size() - m_size < count)
            grow(count);
        return m_out.data() + m_size;
    }
    void grow(int count);

    QByteArray m_out; // all its bytes are room, the first `m_size` of them written
    int m_size = 0;
    int m_depth = 0;
};
