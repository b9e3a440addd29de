#pragma once

#include <QString>
#include <QVariantHash>
#include <QVarLengthArray>

#include "OrvoPlayListItem.h"

// Reads the stored roles text of an item the quick way: once, from front to back, straight into the
// hashes that roles are made of. A page of rows is mostly this.
//
// It takes what role texts are made of: objects, arrays, strings without escapes, whole numbers,
// true, false, null. At anything else, damaged text included, read() is false and the caller asks
// the platform's JSON parser, which knows the rest and says what is wrong. Where read() is true the
// result is what that parser gives, down to the types: nested objects are maps, numbers are 64 bits
// wide.
//
// On the stack of whoever needs it; used once.
class ItemRolesReader {
public:
    explicit ItemRolesReader(const OrvoPlayListItem& item);

    bool read();

    // The top level without `mediaData`; that without `metaData`; and that. The last two are empty
    // where the text has none.
    QVariantHash roles;
    QVariantHash mediaData;
    QVariantHash metaData;

private:
    bool take(char wanted);
    void skipBlanks();
    bool readText(const QChar** begin, int* length);
    bool readKey(QString* key);
    bool readString(QVariant* value);
    bool readNumber(QVariant* value);
    bool readWord(const char* word);
    bool readValue(QVariant* value, int depth);
    bool readArray(QVariant* value, int depth);
    bool readMap(QVariant* value, int depth);
    template <typename ReadMember>
    bool readMembers(ReadMember readMember);
    bool readHash(QVariantHash* hash, const QString& nestedName, QVariantHash* nested,
                  bool (ItemRolesReader::*readNested)());
    bool readMediaData();
    bool readMetaData();

    QString m_text;
    const QChar* m_at;
    const QChar* m_end;
    // Texts that the item holds anyway and that mostly stand in its roles again: shared, not
    // copied.
    QVarLengthArray<QString, 8> m_known;
};
