#pragma once

#include "CMWorker.h"

// A module that answers every set-data request: at once, or, when it is late, only when it is told
// to, and then some of them never.
class LateWorker : public CMNodesWorker {
public:
    LateWorker(const QString& name, bool late) : CMNodesWorker({}, name), m_late(late) {}

    void setDataRequest(const CMSetDataRequest& request) override;
    // Answers what it kept, but drops the requests whose text has a "drop" in it.
    void answerKept();

private:
    static void answer(const CMSetDataRequest& request);

    bool m_late;
    QList<CMSetDataRequest> m_kept;
};
