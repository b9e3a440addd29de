#pragma once

#include "CMValueStore.h"
#include "CMWorker.h"

// The root of the data model: routes every request to the worker that owns the path's prefix, keeps the values that
// belong to the platform itself (settings, the power manager's target), and passes on every worker's events.
// The host makes exactly one, before the first module and outliving the last.
class ORVO_API_EXPORT CMRootWorker : public CMAbstractWorker {
    Q_OBJECT
public:
    // Settings persist in `settingsFile`; an empty name keeps them in memory.
    explicit CMRootWorker(const QString& settingsFile = {});
    ~CMRootWorker() override;

    static CMRootWorker* instance();

    // A prefix that is taken stays with its first worker; the second one is logged and never reached.
    void addWorker(const QString& prefix, CMAbstractWorker* worker, CMSubscribe* events);
    void removeWorker(const QString& prefix, const CMAbstractWorker* worker);
    CMAbstractWorker* worker(const QString& prefix) const { return m_workers.value(prefix); }

    CMSubscribe* events() { return &m_events; }
    CMValueStore* values() { return &m_values; }

    QVariant getValue(const CMPath& path) override;
    void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) override;
    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;
    void getDataRequest(const CMGetDataRequest& request) override;
    void matchRowRequest(const CMMatchRowRequest& request) override;

private:
    template <typename Request>
    CMAbstractWorker* route(const Request& request);

    QHash<QString, CMAbstractWorker*> m_workers;
    CMSubscribe m_events;
    CMValueStore m_values;
};

// The root. Fatal when the host has not made one.
ORVO_API_EXPORT CMRootWorker* CMRoot();

// Watches one value of the data model. `changed` comes after every write that changed it.
class ORVO_API_EXPORT CMValueItem : public QObject {
    Q_OBJECT
public:
    CMValueItem(QObject* parent, const CMPath& path);

Q_SIGNALS:
    void changed(const OrvoValue& newValue, const OrvoValue& oldValue);

private:
    CMPath m_path;
};
