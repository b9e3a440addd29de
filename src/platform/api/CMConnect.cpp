#include "CMConnect.h"

bool cmConnectionParametersRegistered(const QObject* sender, const QMetaMethod& signal,
                                      const QObject* receiver, Qt::ConnectionType type) {
    if (!sender || !receiver)
        return true; // no connection at all: making it fails
    const int kind = type & ~Qt::UniqueConnection;
    const bool queued = kind == Qt::QueuedConnection || kind == Qt::BlockingQueuedConnection ||
                        (kind == Qt::AutoConnection && sender->thread() != receiver->thread());
    if (!queued)
        return true;
    for (int i = 0; i < signal.parameterCount(); ++i) {
        if (signal.parameterType(i) == QMetaType::UnknownType)
            return false;
    }
    return true;
}
