#pragma once

#include <array>
#include <optional>

#include <QByteArray>
#include <QHash>

struct sockaddr_storage;

// An address of IPv4 or IPv6 as a value. One of IPv4 is the same address in both notations.
class IpAddress {
public:
    IpAddress() = default; // none
    static IpAddress of(const sockaddr_storage& address);
    // "192.0.2.1", "2001:db8::1"; nothing for what is no address.
    static std::optional<IpAddress> parse(const QByteArray& text);

    bool isNull() const { return *this == IpAddress(); }
    QByteArray toString() const;
    // Whether the two begin with the same `bits`, counted as in the longer notation.
    bool sharesPrefix(const IpAddress& other, int bits) const;
    bool isV4() const;

    bool operator==(const IpAddress& other) const { return m_bytes == other.m_bytes; }

    static constexpr int Bits = 128;
    static constexpr int BitsBeforeV4 = 96;

private:
    friend uint qHash(const IpAddress& address, uint seed) {
        return qHashRange(address.m_bytes.begin(), address.m_bytes.end(), seed);
    }

    std::array<unsigned char, Bits / 8> m_bytes{};
};
