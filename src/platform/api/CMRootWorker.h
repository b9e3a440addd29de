#pragma once

#include "CMValueStore.h"
#include "CMWorker.h"

// The root of the data model: routes every request to the worker that owns the path's prefix, keeps
// the values that belong to the platform itself (settings, the power manager's target), and passes
// on every worker's events. The host makes exactly one, before the first module and outliving the
// last.
class ORVO_API_EXPORT CMRootWorker : public CMAbstractWorker {
    Q_OBJECT
public:
    // Settings persist in `settingsFile`; an empty name keeps them in memory.
    explicit CMRootWorker(const QString& settingsFile = {});
    ~CMRootWorker() override;

    static CMRootWorker* instance();

    // A prefix that is taken stays with its first worker; the second one is logged and never
    // reached.
    void addWorker(const QString& prefix, CMAbstractWorker* worker, CMSubscribe* events);
    void removeWorker(const QString& prefix, const CMAbstractWorker* worker);
    CMAbstractWorker* worker(const QString& prefix) const { return m_workers.value(prefix); }
    // The prefixes that have a worker, sorted.
    QStringList prefixes() const;

    CMSubscribe* events() { return &m_events; }

    // Who follows the value at `path`. A value that costs something to follow (a play position)
    // changes its events' pace by this; every other value need not care. Counted here, not by the
    // owner, so that a watcher may come before the module it watches.
    void addValueWatcher(const CMPath& path);
    void removeValueWatcher(const CMPath& path);
    bool isValueWatched(const CMPath& path) const { return m_valueWatchers.contains(path.base()); }
    CMValueStore* values() { return &m_values; }

    QVariant getValue(const CMPath& path) override;
    void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) override;
    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;
    void getDataRequest(const CMGetDataRequest& request) override;
    void matchRowRequest(const CMMatchRowRequest& request) override;

Q_SIGNALS:
    // What takes requests from outside says that another one begins: the host's log has limits of
    // what it writes for one.
    void requestBegins();
    // The first watcher of a value came, or its last one left.
    void valueWatched(const CMPath& path, bool watched);

private:
    template <typename Request>
    CMAbstractWorker* route(const Request& request);

    QHash<QString, CMAbstractWorker*> m_workers;
    QHash<QString, int> m_valueWatchers;
    CMSubscribe m_events;
    CMValueStore m_values;
};

// The root. Fatal when the host has not made one.
ORVO_API_EXPORT CMRootWorker* CMRoot();

// Watches one value of the data model while it lives. `changed` comes after every write that
// changed it.
class ORVO_API_EXPORT CMValueItem : public QObject {
    Q_OBJECT
public:
    CMValueItem(QObject* parent, const CMPath& path);
    ~CMValueItem() override;

Q_SIGNALS:
    void changed(const OrvoValue& newValue, const OrvoValue& oldValue);

private:
    CMPath m_path;
};
