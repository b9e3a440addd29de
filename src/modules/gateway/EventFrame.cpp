#include "EventFrame.h"

namespace {
QByteArray idLine(quint64 id) {
    return "id: " + QByteArray::number(id) + '\n';
}
} // namespace

QByteArray EventFrame::event(quint64 id, const QByteArray& type, const QByteArray& json) {
    return idLine(id) + "event: " + type + "\ndata: " + json + "\n\n";
}

QByteArray EventFrame::resync(quint64 id) {
    return event(id, "resync", "{}");
}

QByteArray EventFrame::greeting(int retryMs, std::optional<quint64> id) {
    return "retry: " + QByteArray::number(retryMs) + '\n' + (id ? idLine(*id) : QByteArray()) +
           '\n';
}

QByteArray EventFrame::comment() {
    return ": still here\n\n";
}
