#include "ListsWorker.h"

#include "ExportJob.h"
#include "ImportJob.h"
#include "ListLimits.h"

ListsWorker::ListsWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, QStringLiteral("Lists")) {
    m_pool.setMaxThreadCount(1);
}

ListsWorker::~ListsWorker() {
    m_pool.waitForDone();
}

void ListsWorker::setDataRequest(const CMSetDataRequest& request) {
    struct Command {
        CMPath path;
        void (ListsWorker::*handler)(const CMSetDataRequest&);
    };
    static const Command commands[] = {
        {CMPath(QStringLiteral("lists:import")), &ListsWorker::importList},
        {CMPath(QStringLiteral("lists:export")), &ListsWorker::exportList},
    };
    for (const Command& command : commands) {
        if (request.path().base() == command.path.base()) {
            (this->*command.handler)(request);
            return;
        }
    }
    CMNodesWorker::setDataRequest(request);
}

void ListsWorker::importList(const CMSetDataRequest& request) {
    start<ImportJob>(request, "Too many files are being imported. Please try again.");
}

void ListsWorker::exportList(const CMSetDataRequest& request) {
    start<ExportJob>(request, "Too many files are being exported. Please try again.");
}

template <typename Job>
void ListsWorker::start(const CMSetDataRequest& request, const char* tooMany) {
    if (findChildren<Job*>().size() >= ListLimits::MaxJobs)
        request.reply().setError(CMError(QStringLiteral("TooManyFiles"), TrString("Lists", tooMany),
                                         CMError::DefaultTitle()));
    else
        (new Job(request, &m_pool, this))->start();
}
