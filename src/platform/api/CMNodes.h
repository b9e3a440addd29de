#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

#include "CMPath.h"

class CMNode;
class CMNodeFamily;

// The node registry of one worker: which node answers at which path. Parameters are ignored, so one
// node serves all the paths that differ in them only. Owns nothing: a node may outlive it, as one
// whose parent is the worker does. An object for that reason alone, so that nodes notice its end.
class ORVO_API_EXPORT CMNodes : public QObject {
public:
    void add(const CMPath& path, CMNode* node) { m_nodes.insert(path.base(), node); }
    // Removes the entry only when it is this very node: a successor at the same path keeps its
    // registration.
    void remove(const CMPath& path, const CMNode* node);
    // What a family has at the path is made by this.
    CMNode* find(const CMPath& path) const;
    // The nodes that there are and those that a family would make.
    int count() const;

private:
    friend class CMNodeFamily;

    QHash<QString, CMNode*> m_nodes;
    QHash<QString, CMNodeFamily*> m_families;
};

// Nodes side by side below one path, each made when something first arrives for it: for lists of
// which there are many, and few are opened. Leaves the registry when it is destroyed; the nodes are
// its own.
class ORVO_API_EXPORT CMNodeFamily {
public:
    CMNodeFamily() = default;
    virtual ~CMNodeFamily();
    CMNodeFamily(const CMNodeFamily&) = delete;
    CMNodeFamily& operator=(const CMNodeFamily&) = delete;

    // From here on the family is asked for what is registered nowhere one component below `parent`.
    void addTo(CMNodes* nodes, const CMPath& parent);

    // Makes the node with this last component and registers it. Null when the family has none.
    virtual CMNode* makeNode(const QString& lastComponent) = 0;
    // How many it has that are not made.
    virtual int unmadeCount() const = 0;

private:
    QPointer<CMNodes> m_registry;
    QString m_parent;
};
