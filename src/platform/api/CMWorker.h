#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

#include "CMNodes.h"
#include "CMRequest.h"
#include "CMSubscribe.h"

// What answers requests: a module, or the root that routes to modules. Lives on the thread that
// made it; the owner is the caller of its constructor (for modules the host). Failures are
// replies, never exceptions.
class ORVO_API_EXPORT CMAbstractWorker : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // The value at the path in its hash form, a null variant when there is none. Synchronous.
    virtual QVariant getValue(const CMPath& path) = 0;
    virtual void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) = 0;
    // Calls the command at the path; a set-data request by another name.
    void invoke(const CMPath& path, const QVariant& args, const CMReply<QVariant>& reply) {
        setDataRequest(CMSetDataRequest(path, args, reply));
    }

    virtual void setDataRequest(const CMSetDataRequest& request) = 0;
    virtual void getRowsRequest(const CMGetRowsRequest& request) = 0;
    virtual void getDataRequest(const CMGetDataRequest& request) = 0;
    virtual void matchRowRequest(const CMMatchRowRequest& request) = 0;
};

// A module's worker: answers from its node registry unless told otherwise. Its name in lower case
// is the prefix that the root routes to it.
class ORVO_API_EXPORT CMNodesWorker : public CMAbstractWorker {
    Q_OBJECT
public:
    CMNodesWorker(const QHash<QString, QVariant>& config, const QString& name);
    ~CMNodesWorker() override;

    const QString& name() const { return m_name; }
    QString prefix() const { return m_name.toLower(); }
    const QHash<QString, QVariant>& config() const { return m_config; }
    CMNodes* nodes() { return &m_nodes; }
    CMSubscribe* subscribe() { return &m_subscribe; }

    QVariant getValue(const CMPath& path) override;
    void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) override;
    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;
    void getDataRequest(const CMGetDataRequest& request) override;
    void matchRowRequest(const CMMatchRowRequest& request) override;

private:
    template <typename Request, typename Call>
    void offerToNode(const Request& request, Call call);

    QHash<QString, QVariant> m_config;
    QString m_name;
    CMNodes m_nodes;
    CMSubscribe m_subscribe;
};
