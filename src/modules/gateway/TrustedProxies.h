#pragma once

#include <QByteArrayList>
#include <QString>
#include <QVector>

#include "IpAddress.h"

// The proxies whose word about their clients counts, as addresses and networks. A value; none
// unless parsed.
class TrustedProxies {
public:
    // "127.0.0.1, 10.0.0.0/8, fd00::/8". Nothing, with the reason, when one of them is none.
    static std::optional<TrustedProxies> parse(const QString& list, QString* error);

    bool contains(const IpAddress& address) const;
    // Whose request it is that came from `peer` with these `X-Forwarded-For` fields: the right-most
    // address that is no trusted proxy. Whatever stands left of it may be made up.
    IpAddress clientOf(const IpAddress& peer, const QByteArrayList& forwardedFor) const;

private:
    struct Network {
        IpAddress address;
        int bits;
    };
    QVector<Network> m_networks;
};
