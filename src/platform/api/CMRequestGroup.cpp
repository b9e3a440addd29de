#include "CMRequestGroup.h"

#include <QPointer>

#include "CMRootWorker.h"

void CMRequestGroup::addInvoke(const QString& call, const CMPath& path, const QVariant& args) {
    // The listed reply is the group's own: the one that travels has no handle here, so that its
    // last holder's going away is noticed.
    const CMReply<QVariant> listed;
    m_replies.append(listed);
    ++m_pending;
    const QPointer<CMRequestGroup> self(this);
    const auto answered = [self] {
        if (!self)
            return;
        --self->m_pending;
        self->checkFinished();
    };
    const CMReply<QVariant> travelling;
    travelling.onSuccess([listed, answered](const QVariant& value) {
        listed.setValue(value);
        answered();
    });
    travelling.onError([listed, answered](const CMError& error) {
        listed.setError(error);
        answered();
    });
    CMRoot()->invoke(path + call, args, travelling);
}

void CMRequestGroup::checkAndCallCallback() {
    m_complete = true;
    checkFinished();
}

void CMRequestGroup::checkFinished() {
    if (!m_complete || m_pending > 0 || m_reported)
        return;
    m_reported = true;
    Q_EMIT finished();
}
