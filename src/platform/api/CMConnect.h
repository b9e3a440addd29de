#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QThread>

#include "CMLog.h"

// True when every argument of the signal can travel through a queued connection, or the connection
// is a direct one.
ORVO_API_EXPORT bool cmConnectionParametersRegistered(const QObject* sender,
                                                      const QMetaMethod& signal,
                                                      const QObject* receiver,
                                                      Qt::ConnectionType type);

// QObject::connect that ends the process when the connection cannot be made: a module with a
// missing wire would run on with stale views.
template <typename Sender, typename Signal, typename Receiver, typename Slot>
void cmConnect(const Sender* sender, Signal signal, const Receiver* receiver, Slot slot,
               Qt::ConnectionType type = Qt::AutoConnection) {
    CM_ASSERT(
        cmConnectionParametersRegistered(sender, QMetaMethod::fromSignal(signal), receiver, type),
        "verifyConnectionSignalParameters(sender, signal, receiver, type)");
    CM_ASSERT(QObject::connect(sender, signal, receiver, slot, type),
              "connect(sender, signal, receiver, slot, type)");
}

template <typename Sender, typename Signal, typename Receiver, typename Slot>
void cmDisconnect(const Sender* sender, Signal signal, const Receiver* receiver, Slot slot) {
    CM_ASSERT(QObject::disconnect(sender, signal, receiver, slot),
              "disconnect(sender, signal, receiver, slot)");
}
