#pragma once

#include <QHash>
#include <QList>

#include "CMError.h"
#include "CMPath.h"
#include "OrvoValue.h"

// One value that the platform itself keeps: the function that names its path, the path, the one key
// its hash form has, what is kept there, and whether it survives a restart.
struct CMValueDeclaration {
    const char* function;
    const char* path;
    const char* key;
    QMetaType::Type type;
    bool persistent;
};

// The platform's own values. Undeclared paths, wrong keys and wrong types are refused and change
// nothing. Persistent values are written to their file before a change counts, atomically: the file
// holds the old state or the new one; a change that could not be written is refused, and the next
// one writes the file anew. A file that cannot be read stays as it is: readError() says why, there
// are no values, and no persistent one is taken.
class ORVO_API_EXPORT CMValueStore {
public:
    // Of a file that the store takes for its own. What it writes has a few thousand bytes at most.
    static constexpr qint64 MaxFileBytes = 65536;
    // Of a value that is a text, so that the file stays one that can be read.
    static constexpr int MaxTextLength = 4096;

    explicit CMValueStore(const QString& file);

    // Empty when all is well, also where there is no file yet. A damaged one is kept aside.
    const QString& readError() const { return m_readError; }

    static const QList<CMValueDeclaration>& declarations();
    bool isDeclared(const CMPath& path) const { return declaration(path) != nullptr; }
    bool isPersistent(const CMPath& path) const;
    bool hasValue(const CMPath& path) const { return m_values.contains(path.base()); }

    // The empty value when nothing was ever stored.
    OrvoValue value(const CMPath& path) const { return m_values.value(path.base()); }
    // Takes the hash form ({"i32": 100}) or the bare value (100, or its text "100").
    bool setValue(const CMPath& path, const QVariant& value, CMError* error);

private:
    static const CMValueDeclaration* declaration(const CMPath& path);
    // False when the file is there and cannot be read.
    bool readFile(QByteArray* text);
    void load();
    bool save(const QHash<QString, OrvoValue>& values) const;

    QString m_file;
    QString m_readError;
    QHash<QString, OrvoValue> m_values;
};

// The paths of these values, one function each.
#define ORVO_VALUE_PATHS(X)                                                                        \
    X(OrvoPlayListsSettingsDataBaseItemsLimitPath, "settings:playlists/databaseItemsLimit", "i32", \
      QMetaType::Int, true)                                                                        \
    X(OrvoPlayListSettingsDataBaseVacuumPath, "settings:playlists/databaseVacuum", "bool",         \
      QMetaType::Bool, true)                                                                       \
    X(OrvoPlayListSettingsPlayqueueVisibilityPath, "settings:playlists/playqueueVisible", "bool",  \
      QMetaType::Bool, true)                                                                       \
    X(OrvoPlayListSettingsCollectionsVisibilityPath, "settings:playlists/collectionsVisible",      \
      "bool", QMetaType::Bool, true)                                                               \
    X(OrvoPlayerSettingsVolumePath, "settings:player/volume", "i32", QMetaType::Int, true)         \
    X(OrvoPlayerSettingsResumePointPath, "settings:player/resumePoint", "string",                  \
      QMetaType::QString, true)                                                                    \
    X(OrvoPowerManagerTargetPath, "powermanager:target", "target", QMetaType::Int, false)

#define ORVO_DECLARE_VALUE_PATH(function, path, key, type, persistent)                             \
    ORVO_API_EXPORT CMPath function();
ORVO_VALUE_PATHS(ORVO_DECLARE_VALUE_PATH)
#undef ORVO_DECLARE_VALUE_PATH
