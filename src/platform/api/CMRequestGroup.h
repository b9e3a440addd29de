#pragma once

#include <QList>
#include <QObject>

#include "CMPath.h"
#include "CMReply.h"

// Several invokes whose answers are wanted together. `finished()` comes exactly once, when every
// answer is there, and never before checkAndCallCallback(). A prefix that no module owns, and an
// owner that drops its request, is an error among the replies, never a hang. Owned by its parent or
// maker, on the worker's thread.
class ORVO_API_EXPORT CMRequestGroup : public QObject {
    Q_OBJECT
public:
    explicit CMRequestGroup(QObject* parent = nullptr) : QObject(parent) {}

    // Invokes `call` below `path` with `args`.
    void addInvoke(const QString& call, const CMPath& path, const QVariant& args);
    // All invokes are added: report now if every answer is there, else with the last one.
    void checkAndCallCallback();
    // In the order of addInvoke.
    const QList<CMReply<QVariant>>& getReplyList() const { return m_replies; }

Q_SIGNALS:
    void finished();

private:
    void checkFinished();

    QList<CMReply<QVariant>> m_replies;
    int m_pending = 0;
    bool m_complete = false;
    bool m_reported = false;
};
