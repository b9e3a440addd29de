#pragma once

#include <functional>

#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include "CMRequest.h"

// What the jobs of the module have in common: one request that is to be answered, and requests to
// other modules meanwhile. Owned by the worker, on the event loop's thread; deletes itself when it
// has answered. What it asks for and does not get ends it by fail().
class ListJob : public QObject {
    Q_OBJECT
public:
    ListJob(const CMSetDataRequest& request, QThreadPool* pool, QObject* parent);

    virtual void start() = 0;

protected:
    using OnError = std::function<void(const CMError&)>;

    void invoke(const CMPath& path, const QVariant& args,
                const std::function<void(const QVariant&)>& then, const OnError& otherwise = {});
    void readRows(const CMPath& path, int from, int to, const QStringList& roles,
                  const std::function<void(const OrvoRowsRoles&)>& then);

    // Answers the request, in the end.
    virtual void fail(const CMError& error) = 0;
    static CMError refusal(const TrString& why);

    CMSetDataRequest m_request;
    QThreadPool* m_pool;

private:
    // Calls one of the two, while the job is there.
    template <typename Reply, typename Then>
    void await(const Reply& reply, const Then& then, const OnError& otherwise);
};
