#pragma once

#include <QHash>
#include <QMap>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "orvo_api_export.h"

// An address in the data model: the prefix of the module that owns it, components, and optional
// text parameters.
//
//   playlists:pl/items/5?plid=5&action=cmnode
//   ^prefix   ^components ^parameters, in the order of their names
//
// In the text form everything that is not plain in a component or parameter is percent-encoded, so
// that any file name can be a component and a path carried inside a parameter comes back whole.
class ORVO_API_EXPORT CMPath {
public:
    CMPath();
    // Reads the text form. Text without a prefix gives the empty path.
    explicit CMPath(const QString& text);
    CMPath(const CMPath& other);
    CMPath(CMPath&& other) noexcept;
    CMPath& operator=(const CMPath& other);
    CMPath& operator=(CMPath&& other) noexcept;
    ~CMPath();

    static CMPath fromPrefix(const QString& prefix);
    static CMPath fromQVariant(const QVariant& value);
    QVariant toQVariant() const { return toString(); }

    bool isEmpty() const;
    const QString& prefix() const;
    // The components, never the parameters.
    const QStringList& splitBase() const;
    // The text form without the parameters: the key of the node registry.
    QString base() const;
    QString toString() const;

    // Adds a parameter, replacing one of the same name.
    CMPath& addParam(const QString& name, const QString& value);
    const QMap<QString, QString>& params() const;
    QString param(const QString& name) const { return params().value(name); }
    void setParams(const QMap<QString, QString>& params);

    // Appends components before the parameters: p + "5" equals p + "/" + "5".
    CMPath operator+(const QString& components) const;

    // Whole components, parameters ignored: items/1 is no start of items/10.
    bool startsWith(const CMPath& start) const;

    bool operator==(const CMPath& other) const;
    bool operator!=(const CMPath& other) const { return !(*this == other); }

private:
    struct Data;
    QSharedDataPointer<Data> d;
};
Q_DECLARE_METATYPE(CMPath)

ORVO_API_EXPORT uint qHash(const CMPath& path, uint seed = 0);
