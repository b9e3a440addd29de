#include "ListJob.h"

#include "CMRootWorker.h"

ListJob::ListJob(const CMSetDataRequest& request, QThreadPool* pool, QObject* parent)
    : QObject(parent), m_request(request), m_pool(pool) {}

CMError ListJob::refusal(const TrString& why) {
    return CMError(CMError::InvalidValue(), why, CMError::DefaultTitle());
}

template <typename Reply, typename Then>
void ListJob::await(const Reply& reply, const Then& then, const OnError& otherwise) {
    const QPointer<ListJob> alive(this);
    reply.onError([alive, otherwise](const CMError& error) {
        if (!alive)
            return;
        if (otherwise)
            otherwise(error);
        else
            alive->fail(error);
    });
    reply.onSuccess([alive, then](const auto& value) {
        if (alive)
            then(value);
    });
}

void ListJob::invoke(const CMPath& path, const QVariant& args,
                     const std::function<void(const QVariant&)>& then, const OnError& otherwise) {
    const CMReply<QVariant> reply;
    CMRoot()->invoke(path, args, reply);
    await(reply, then, otherwise);
}

void ListJob::readRows(const CMPath& path, int from, int to, const QStringList& roles,
                       const std::function<void(const OrvoRowsRoles&)>& then) {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(CMGetRowsRequest(path, from, to, roles, reply));
    await(reply, then, {});
}
