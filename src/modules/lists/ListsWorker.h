#pragma once

#include <QThreadPool>

#include "CMWorker.h"

// The module's root object: playlist files come in (`lists:import`) and go out (`lists:export`).
// Owned by the host, on its thread; its jobs have texts read and written in a thread.
class ListsWorker : public CMNodesWorker {
    Q_OBJECT
public:
    explicit ListsWorker(const QHash<QString, QVariant>& config);
    // Waits for the thread, which tells the jobs its end.
    ~ListsWorker() override;

    void setDataRequest(const CMSetDataRequest& request) override;

private:
    void importList(const CMSetDataRequest& request);
    void exportList(const CMSetDataRequest& request);
    template <typename Job>
    void start(const CMSetDataRequest& request, const char* tooMany);

    QThreadPool m_pool;
};
