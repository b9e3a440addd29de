#pragma once

#include "CMWorker.h"

// A module that keeps what reached it until the test answers.
class KeepingWorker : public CMNodesWorker {
public:
    explicit KeepingWorker(const QString& name) : CMNodesWorker({}, name) {}
    void setDataRequest(const CMSetDataRequest& request) override { requests.append(request); }

    QList<CMSetDataRequest> requests;
};
