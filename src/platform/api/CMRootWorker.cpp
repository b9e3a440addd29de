#include "CMRootWorker.h"

#include "CMConnect.h"

namespace {
CMRootWorker* root = nullptr;

CMError unknownPrefix(const CMPath& path) {
    return CMError(CMError::NoSuchNode(),
                   TrString("CMRoot", "There is nothing at %1.", {path.toString()}),
                   CMError::DefaultTitle());
}
} // namespace

CMRootWorker* CMRoot() {
    CM_ASSERT(root, "CMRoot() before the host has made one");
    return root;
}

CMRootWorker* CMRootWorker::instance() {
    return root;
}

CMRootWorker::CMRootWorker(const QString& settingsFile) : m_values(settingsFile) {
    CM_ASSERT(!root, "a second CMRootWorker");
    root = this;
}

CMRootWorker::~CMRootWorker() {
    root = nullptr;
}

void CMRootWorker::addWorker(const QString& prefix, CMAbstractWorker* worker, CMSubscribe* events) {
    if (m_workers.contains(prefix)) {
        static log4cplus::Logger logger =
            log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Platform"));
        LOG4CPLUS_ERROR(logger,
                        "prefix " << prefix << " is taken, its second worker gets no requests");
        return;
    }
    m_workers.insert(prefix, worker);
    if (events)
        cmConnect(events, &CMSubscribe::changed, &m_events, &CMSubscribe::changed);
}

void CMRootWorker::removeWorker(const QString& prefix, const CMAbstractWorker* worker) {
    if (m_workers.value(prefix) == worker)
        m_workers.remove(prefix);
}

template <typename Request>
CMAbstractWorker* CMRootWorker::route(const Request& request) {
    CMAbstractWorker* owner = worker(request.path().prefix());
    if (!owner)
        request.reply().setError(unknownPrefix(request.path()));
    return owner;
}

QStringList CMRootWorker::prefixes() const {
    QStringList result = m_workers.keys();
    result.sort();
    return result;
}

QVariant CMRootWorker::getValue(const CMPath& path) {
    if (m_values.isDeclared(path))
        return m_values.value(path).toVariant();
    CMAbstractWorker* owner = worker(path.prefix());
    return owner ? owner->getValue(path) : QVariant();
}

void CMRootWorker::setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) {
    if (m_values.isDeclared(path)) {
        const OrvoValue oldValue = m_values.value(path);
        CMError error;
        if (!m_values.setValue(path, value, &error)) {
            reply.setError(error);
            return;
        }
        const OrvoValue newValue = m_values.value(path);
        // Watchers know the value by its own path, whatever parameters the writer gave.
        if (newValue != oldValue)
            m_events.valueChanged(CMPath(path.base()), newValue, oldValue);
        reply.setFinished();
        return;
    }
    if (CMAbstractWorker* owner = worker(path.prefix()))
        owner->setValue(path, value, reply);
    else
        reply.setError(unknownPrefix(path));
}

void CMRootWorker::setDataRequest(const CMSetDataRequest& request) {
    if (CMAbstractWorker* owner = route(request))
        owner->setDataRequest(request);
}

void CMRootWorker::getRowsRequest(const CMGetRowsRequest& request) {
    if (CMAbstractWorker* owner = route(request))
        owner->getRowsRequest(request);
}

void CMRootWorker::getDataRequest(const CMGetDataRequest& request) {
    if (CMAbstractWorker* owner = route(request))
        owner->getDataRequest(request);
}

void CMRootWorker::matchRowRequest(const CMMatchRowRequest& request) {
    if (CMAbstractWorker* owner = route(request))
        owner->matchRowRequest(request);
}

void CMRootWorker::addValueWatcher(const CMPath& path) {
    if (++m_valueWatchers[path.base()] == 1)
        Q_EMIT valueWatched(path, true);
}

void CMRootWorker::removeValueWatcher(const CMPath& path) {
    const auto it = m_valueWatchers.find(path.base());
    if (it == m_valueWatchers.end() || --it.value() > 0)
        return;
    m_valueWatchers.erase(it);
    Q_EMIT valueWatched(path, false);
}

CMValueItem::CMValueItem(QObject* parent, const CMPath& path) : QObject(parent), m_path(path) {
    CMRoot()->addValueWatcher(path);
    cmConnect(CMRoot()->events(), &CMSubscribe::changed, this, [this](const CMChange& change) {
        if (change.kind == CMChange::Kind::Value && change.path == m_path)
            Q_EMIT changed(change.newValue, change.oldValue);
    });
}

CMValueItem::~CMValueItem() {
    if (CMRootWorker* rootWorker = CMRootWorker::instance())
        rootWorker->removeValueWatcher(m_path);
}
