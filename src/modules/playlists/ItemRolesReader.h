#pragma once

#include <vector>

#include <QString>
#include <QVariantHash>

// Reads the stored roles texts of items the quick way: once, from front to back, straight into the
// hashes that roles are made of. A page of rows is mostly this. Entries that follow each other are
// often of one album: what a text has in common with the one before is shared.
//
// It takes what role texts are made of: objects, arrays, strings without numbered escapes, whole
// numbers, true, false, null. At anything else, damaged text included, read() is false and the
// caller asks the platform's JSON parser, which knows the rest and says what is wrong. Where it is
// true the result is what that parser gives, down to the types: nested objects are maps, numbers
// are 64 bits wide.
//
// Made on the stack, for any number of texts.
class ItemRolesReader {
public:
    ItemRolesReader();

    bool read(const QString& text);
    // The same without a look into `mediaData`, of which it only says whether it can be read.
    bool readTopLevel(const QString& text);

    // The top level without `mediaData`; that without `metaData`; and that. The last two are empty
    // where the text has none. The top level may hold invalid values under names of the text
    // before: a row is made of valid ones only, and the places of the others serve again.
    QVariantHash roles;
    QVariantHash mediaData;
    QVariantHash metaData;

private:
    bool readRoles(const QString& text, bool (ItemRolesReader::*readNested)());
    bool take(char wanted);
    void skipBlanks();
    bool readText(const QChar** begin, int* length);
    bool readEscapedText(const QChar** begin, int* length);
    bool takePair();
    bool readKey(QString* key);
    bool readString(QVariant* value);
    bool readNumber(QVariant* value);
    bool readWord(const char* word, const QVariant& meaning, QVariant* value);
    // Null: a value is read and not kept.
    bool readValue(QVariant* value, int depth);
    bool readArray(QVariant* value, int depth);
    bool readMap(QVariant* value, int depth);
    template <typename ReadMember>
    bool readMembers(ReadMember readMember);
    bool readHash(QVariantHash* hash, const QString& nestedName, QVariantHash* nested,
                  bool (ItemRolesReader::*readNested)());
    bool readMediaData();
    bool readMetaData();
    bool passMediaData();

    const QChar* m_at = nullptr;
    const QChar* m_end = nullptr;
    // The text read last, where it had escapes.
    QString m_unescaped;
    // The name read last, as its index among the known ones or their number, and after each name
    // the one that followed it the last time: texts mostly agree in their order.
    std::size_t m_key = 0;
    std::vector<std::size_t> m_following;
    // The text read last under each name.
    std::vector<QString> m_last;
};
