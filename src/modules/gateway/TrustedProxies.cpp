#include "TrustedProxies.h"

#include <QStringList>

namespace {

// A proxy may write the client's port, too: "192.0.2.1:4711", "[2001:db8::1]:4711".
QByteArray withoutPort(const QByteArray& text) {
    if (text.startsWith('['))
        return text.mid(1, text.indexOf(']') - 1);
    return text.count(':') == 1 ? text.left(text.indexOf(':')) : text;
}

} // namespace

std::optional<TrustedProxies> TrustedProxies::parse(const QString& list, QString* error) {
    TrustedProxies result;
    for (const QString& entry : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList parts = entry.trimmed().split(QLatin1Char('/'));
        const auto address = IpAddress::parse(parts.first().toUtf8());
        const int most = address && address->isV4() ? IpAddress::Bits - IpAddress::BitsBeforeV4
                                                    : IpAddress::Bits;
        bool isNumber = true;
        const int bits = parts.size() == 1 ? most : parts.at(1).toInt(&isNumber);
        if (!address || !isNumber || bits < 0 || bits > most || parts.size() > 2) {
            *error = QStringLiteral("\"%1\" is neither an address nor a network").arg(entry);
            return std::nullopt;
        }
        result.m_networks.append({*address, IpAddress::Bits - most + bits});
    }
    return result;
}

bool TrustedProxies::contains(const IpAddress& address) const {
    for (const Network& network : m_networks) {
        if (address.sharesPrefix(network.address, network.bits))
            return true;
    }
    return false;
}

IpAddress TrustedProxies::clientOf(const IpAddress& peer,
                                   const QByteArrayList& forwardedFor) const {
    IpAddress client = peer;
    QByteArrayList names = forwardedFor.join(',').split(',');
    while (contains(client) && !names.isEmpty()) {
        const auto next = IpAddress::parse(withoutPort(names.takeLast().trimmed()));
        // What is no address cannot be told apart: it counts as the proxy that wrote it.
        if (!next)
            break;
        client = *next;
    }
    return client;
}
