#pragma once

#include <QHash>
#include <QObject>

#include "CMPath.h"

class CMNode;

// The node registry of one worker: which node answers at which path. Parameters are ignored, so one
// node serves all the paths that differ in them only. Owns nothing: a node may outlive it, as one
// whose parent is the worker does. An object for that reason alone, so that nodes notice its end.
class ORVO_API_EXPORT CMNodes : public QObject {
public:
    void add(const CMPath& path, CMNode* node) { m_nodes.insert(path.base(), node); }
    // Removes the entry only when it is this very node: a successor at the same path keeps its
    // registration.
    void remove(const CMPath& path, const CMNode* node);
    CMNode* find(const CMPath& path) const { return m_nodes.value(path.base()); }
    int count() const { return m_nodes.size(); }

private:
    QHash<QString, CMNode*> m_nodes;
};
