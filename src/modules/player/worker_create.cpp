#include "PlayerWorker.h"

// The module's only entry.
extern "C" __attribute__((visibility("default"))) CMAbstractWorker*
worker_create(QHash<QString, QVariant> config) {
    return new PlayerWorker(config);
}
