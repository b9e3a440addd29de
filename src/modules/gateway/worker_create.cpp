#include <stdexcept>

#include "GatewayWorker.h"

// The module's entry. Where the port cannot be opened, or must not be, the exception tells the host
// why: the person who started it reads that also where the log goes to a file.
extern "C" __attribute__((visibility("default"))) CMAbstractWorker*
worker_create(QHash<QString, QVariant> config) {
    auto worker = std::make_unique<GatewayWorker>(config);
    if (!worker->start())
        throw std::runtime_error(worker->failure().toStdString());
    return worker.release();
}
