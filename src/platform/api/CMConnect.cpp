#include "CMConnect.h"

bool cmConnectionParametersRegistered(const QObject* sender, const QMetaMethod& signal, const QObject* receiver,
                                      Qt::ConnectionType type) {
    const bool queued = type == Qt::QueuedConnection || type == Qt::BlockingQueuedConnection ||
                        (type == Qt::AutoConnection && sender->thread() != receiver->thread());
    if (!queued)
        return true;
    for (int i = 0; i < signal.parameterCount(); ++i) {
        if (signal.parameterType(i) == QMetaType::UnknownType)
            return false;
    }
    return true;
}
