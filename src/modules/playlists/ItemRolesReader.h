#pragma once

#include <QByteArray>
#include <QVariantHash>

// Reads the stored roles texts of items with RapidJSON, straight into the hashes that roles are
// made of: a page of rows is mostly this.
//
// It takes objects of whole numbers, texts, lists and objects, without repeated names. At anything
// else, damaged text included, read() is false, and the caller asks the platform's JSON parser,
// which knows the rest and says what is wrong. Where it is true the result is what that parser
// gives, down to the types: nested objects are maps, numbers are 64 bits wide.
//
// Made on the stack, for any number of texts.
class ItemRolesReader {
public:
    // `withMediaData`: false where only the top level matters; what is in `mediaData` is passed
    // over.
    bool read(const QByteArray& utf8, bool withMediaData = true);

    // The top level without `mediaData`; that without `metaData`; and that. The last two are empty
    // where the text has none.
    QVariantHash roles;
    QVariantHash mediaData;
    QVariantHash metaData;

private:
    QByteArray m_text; // whose memory serves again
};
