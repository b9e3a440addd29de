#pragma once

#include <limits>

#include <QString>
#include <QStringList>
#include <QVariant>

#include "orvo_api_export.h"

// A record whose attributes live in a hash: the base of every value type that crosses a module's
// border. Implicitly shared; keys it does not know are kept, so a record survives a trip through
// older code.
class ORVO_API_EXPORT OrvoHash {
public:
    OrvoHash() = default;
    explicit OrvoHash(const QVariantHash& hash) : m_hash(hash) {}
    explicit OrvoHash(const QVariant& value) : m_hash(value.toHash()) {}

    bool isEmpty() const { return m_hash.isEmpty(); }
    bool contains(const QString& key) const { return m_hash.contains(key); }
    QVariant attribute(const QString& key) const { return stored(key); }
    void setAttribute(const QString& key, const QVariant& value) { m_hash.insert(key, value); }
    void removeAttribute(const QString& key) { m_hash.remove(key); }

    const QVariantHash& toHash() const { return m_hash; }
    QVariant toVariant() const { return m_hash; }

    bool operator==(const OrvoHash& other) const { return m_hash == other.m_hash; }
    bool operator!=(const OrvoHash& other) const { return m_hash != other.m_hash; }

    // A whole number out of untrusted data: integers, integral doubles and decimal text within 32
    // bits. Everything else (out of range, fractions, booleans, objects) is `fallback`; nothing
    // wraps around or rounds.
    static int toInt(const QVariant& value, int fallback);
    static qint64 toInt64(const QVariant& value, qint64 fallback);

protected:
    // The attribute itself: getters convert it where it lies. A null value when there is none.
    const QVariant& stored(const QString& key) const {
        const auto found = m_hash.constFind(key);
        return found == m_hash.constEnd() ? nothing() : *found;
    }

private:
    static const QVariant& nothing();

    QVariantHash m_hash;
};

// How an attribute of type T is kept in the hash. Records are hashes, lists are lists, enumerations
// are texts (OrvoEnum.h), everything else is kept as it is.
template <typename T>
struct OrvoAttribute {
    static T read(const QVariant& value) {
        if constexpr (std::is_base_of_v<OrvoHash, T>)
            return T(value.toHash());
        else
            return value.value<T>();
    }
    static QVariant write(const T& value) {
        if constexpr (std::is_base_of_v<OrvoHash, T>)
            return value.toHash();
        else
            return QVariant::fromValue(value);
    }
};

template <>
struct OrvoAttribute<QString> {
    static QString read(const QVariant& value) { return value.toString(); }
    static QVariant write(const QString& value) { return value; }
};

template <>
struct OrvoAttribute<int> {
    static int read(const QVariant& value) { return OrvoHash::toInt(value, 0); }
    static QVariant write(int value) { return value; }
};

template <>
struct OrvoAttribute<qint64> {
    static qint64 read(const QVariant& value) { return OrvoHash::toInt64(value, 0); }
    static QVariant write(qint64 value) { return value; }
};

// An element of a list that is no number reads -1: no position, no id.
template <>
struct OrvoAttribute<QList<int>> {
    static QList<int> read(const QVariant& value) {
        QList<int> result;
        const QVariantList list = value.toList();
        result.reserve(list.size());
        for (const QVariant& element : list)
            result.append(OrvoHash::toInt(element, -1));
        return result;
    }
    static QVariant write(const QList<int>& value) {
        QVariantList list;
        list.reserve(value.size());
        for (int element : value)
            list.append(element);
        return list;
    }
};

template <>
struct OrvoAttribute<QVariantList> {
    static QVariantList read(const QVariant& value) { return value.toList(); }
    static QVariant write(const QVariantList& value) { return value; }
};

template <typename Record>
struct OrvoRecordListAttribute {
    static QList<Record> read(const QVariant& value) {
        QList<Record> result;
        const QVariantList list = value.toList();
        result.reserve(list.size());
        for (const QVariant& element : list)
            result.append(Record(element.toHash()));
        return result;
    }
    static QVariant write(const QList<Record>& value) {
        QVariantList list;
        list.reserve(value.size());
        for (const Record& element : value)
            list.append(element.toHash());
        return list;
    }
};

// An id, a position: a number whose absence must be visible, as -1.
struct OrvoId {
    static int read(const QVariant& value) { return OrvoHash::toInt(value, -1); }
    static QVariant write(int value) { return value; }
};

// Declares one attribute of a record: getter `getter()`, setter `set<Key>()`, its name `<Key>()`
// and `contains<Key>()`.
#define ORVO_ATTRIBUTE(Type, getter, Key, name)                                                    \
    ORVO_ATTRIBUTE_AS(Type, OrvoAttribute<Type>, getter, Key, name)
#define ORVO_ID_ATTRIBUTE(getter, Key, name) ORVO_ATTRIBUTE_AS(int, OrvoId, getter, Key, name)
#define ORVO_LIST_ATTRIBUTE(Record, getter, Key, name)                                             \
    ORVO_ATTRIBUTE_AS(QList<Record>, OrvoRecordListAttribute<Record>, getter, Key, name)
#define ORVO_ATTRIBUTE_AS(Type, Codec, getter, Key, name)                                          \
    static QString Key() {                                                                         \
        return QStringLiteral(name);                                                               \
    }                                                                                              \
    bool contains##Key() const {                                                                   \
        return contains(Key());                                                                    \
    }                                                                                              \
    Type getter() const {                                                                          \
        return Codec::read(stored(Key()));                                                         \
    }                                                                                              \
    void set##Key(const Type& newValue) {                                                          \
        setAttribute(Key(), Codec::write(newValue));                                               \
    }
