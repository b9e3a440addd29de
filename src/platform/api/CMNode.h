#pragma once

#include <QObject>
#include <QPointer>
#include <QRecursiveMutex>

#include "CMNodes.h"
#include "CMRequest.h"

// One place of the data model. A request function that returns true has answered, or will answer;
// with false the worker answers with an error. Lives on its worker's thread.
class ORVO_API_EXPORT CMNode : public QObject {
    Q_OBJECT
public:
    explicit CMNode(const CMPath& path, QObject* parent = nullptr)
        : QObject(parent), m_path(path) {}
    ~CMNode() override;

    const CMPath& path() const { return m_path; }
    CMNodes* nodes() const { return m_nodes; }
    // Registers the node at its path.
    void setNodes(CMNodes* nodes);

    virtual QRecursiveMutex* mutex() { return &m_mutex; }
    virtual bool request(const CMSetDataRequest& request) { return setDataRequest(request); }
    virtual bool getDataRequest(const CMGetDataRequest&) { return false; }
    virtual bool getRowsRequest(const CMGetRowsRequest&) { return false; }
    virtual bool matchRowRequest(const CMMatchRowRequest&) { return false; }
    virtual bool setDataRequest(const CMSetDataRequest&) { return false; }

    // A reader began or ceased to watch the node's value, data or rows.
    virtual void valuePathAdd(const CMPath&) {}
    virtual void valuePathRemove(const CMPath&) {}
    virtual void dataPathAdd(const CMPath&) {}
    virtual void dataPathRemove(const CMPath&) {}
    virtual void rowsPathAdd(const CMPath&) {}
    virtual void rowsPathRemove(const CMPath&) {}

protected:
    void unregister();

private:
    CMPath m_path;
    QPointer<CMNodes> m_nodes;
    QRecursiveMutex m_mutex;
};

// A node that describes itself: title and media data.
class ORVO_API_EXPORT CMUINode : public CMNode {
    Q_OBJECT
public:
    using CMNode::CMNode;

    // Leaves the registry at once, unless a successor is registered there already, and is destroyed
    // later.
    virtual void deleteLater();

    void setTitle(const TrString& title) { m_title = title; }
    const TrString& title() const { return m_title; }
    void setMediaData(const OrvoMediaData& mediaData) { m_mediaData = mediaData; }

    // The node's own roles, restricted to `keys`; its path carries `params`.
    OrvoRoles getDataRoles(const QStringList& keys, const QMap<QString, QString>& params) const;

    bool getDataRequest(const CMGetDataRequest& request) override;
    // A disabled node answers nothing: the worker reports its requests as not supported.
    virtual void setDisabled(bool disabled) { m_disabled = disabled; }
    bool isDisabled() const { return m_disabled; }

private:
    TrString m_title;
    OrvoMediaData m_mediaData;
    bool m_disabled = false;
};

class ORVO_API_EXPORT CMContainerNode : public CMUINode {
    Q_OBJECT
public:
    using CMUINode::CMUINode;

    // One of the node's own roles.
    virtual QVariant getRoleData(const QString& role) const;
};

// A container that lists rows.
class ORVO_API_EXPORT CMListRowsNode : public CMContainerNode {
    Q_OBJECT
public:
    using CMContainerNode::CMContainerNode;

    bool matchRowRequest(const CMMatchRowRequest& request) override;
    void rowsPathAdd(const CMPath& path) override;
    void rowsPathRemove(const CMPath& path) override;
    // How many readers watch the rows.
    int rowsReaders() const { return m_rowsReaders; }
    virtual void languageChanged() {}

private:
    int m_rowsReaders = 0;
};
