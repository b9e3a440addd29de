#include "GatewayWorker.h"

// The module's entry. Null when the port cannot be opened.
extern "C" __attribute__((visibility("default"))) CMAbstractWorker*
worker_create(QHash<QString, QVariant> config) {
    auto worker = std::make_unique<GatewayWorker>(config);
    return worker->start() ? worker.release() : nullptr;
}
