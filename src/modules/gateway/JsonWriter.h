#pragma once

#include <QByteArray>
#include <QVariant>

// Writes records as JSON straight into one byte array: hashes with their keys in order, so that the
// same record always gives the same text; translatable texts as their translation; paths as their
// text; whole numbers as whole numbers. What has no JSON form is null. A value on the caller's
// stack; never fails.
class JsonWriter {
public:
    explicit JsonWriter(int expectedSize = 0) { m_out.reserve(expectedSize); }

    const QByteArray& text() const { return m_out; }

    void beginObject() { m_out.append('{'); }
    // `name` is plain ASCII without anything to escape.
    void member(const char* name, bool first = false);
    void member(const QString& name, bool first = false);
    void endObject() { m_out.append('}'); }
    void raw(const char* text) { m_out.append(text); }
    void raw(const QByteArray& text) { m_out.append(text); }

    void value(const QVariant& value);
    void value(const QString& text);
    void value(qint64 number) { m_out.append(QByteArray::number(number)); }

    static QByteArray quoted(const QString& text);

private:
    void value(double number);
    void hash(const QVariantHash& hash);
    void map(const QVariantMap& map);
    template <typename List>
    void list(const List& list);

    QByteArray m_out;
    int m_depth = 0;
};
