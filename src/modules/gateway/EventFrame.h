#pragma once

#include <optional>

#include <QByteArray>

// What goes over the wire of an event stream: fields, one a line, and an empty line behind them.
namespace EventFrame {

QByteArray event(quint64 id, const QByteArray& type, const QByteArray& json);
// Tells a reader to read everything again: what came before `id` is no longer here.
QByteArray resync(quint64 id);
// The first one: when to connect again, and the id to go on after.
QByteArray greeting(int retryMs, std::optional<quint64> id);
// Nothing, so that the connection is seen to be alive.
QByteArray comment();

} // namespace EventFrame
