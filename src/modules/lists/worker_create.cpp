#include "ListsWorker.h"

extern "C" Q_DECL_EXPORT CMAbstractWorker* worker_create(QHash<QString, QVariant> config) {
    return new ListsWorker(config);
}
