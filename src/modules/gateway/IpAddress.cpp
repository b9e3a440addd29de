#include "IpAddress.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>

namespace {

// How an address of IPv4 stands in the longer notation: ::ffff:192.0.2.1.
constexpr unsigned char V4Start[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};

} // namespace

IpAddress IpAddress::of(const sockaddr_storage& address) {
    IpAddress result;
    if (address.ss_family == AF_INET6) {
        std::memcpy(result.m_bytes.data(),
                    &reinterpret_cast<const sockaddr_in6&>(address).sin6_addr,
                    result.m_bytes.size());
    } else if (address.ss_family == AF_INET) {
        std::memcpy(result.m_bytes.data(), V4Start, sizeof V4Start);
        std::memcpy(result.m_bytes.data() + sizeof V4Start,
                    &reinterpret_cast<const sockaddr_in&>(address).sin_addr, sizeof(in_addr));
    }
    return result;
}

std::optional<IpAddress> IpAddress::parse(const QByteArray& text) {
    sockaddr_storage address{};
    if (inet_pton(AF_INET, text.constData(), &reinterpret_cast<sockaddr_in&>(address).sin_addr) ==
        1)
        address.ss_family = AF_INET;
    else if (inet_pton(AF_INET6, text.constData(),
                       &reinterpret_cast<sockaddr_in6&>(address).sin6_addr) == 1)
        address.ss_family = AF_INET6;
    else
        return std::nullopt;
    return of(address);
}

bool IpAddress::isV4() const {
    return std::memcmp(m_bytes.data(), V4Start, sizeof V4Start) == 0;
}

QByteArray IpAddress::toString() const {
    char text[INET6_ADDRSTRLEN] = "";
    if (isV4())
        inet_ntop(AF_INET, m_bytes.data() + sizeof V4Start, text, sizeof text);
    else
        inet_ntop(AF_INET6, m_bytes.data(), text, sizeof text);
    return text;
}

bool IpAddress::sharesPrefix(const IpAddress& other, int bits) const {
    const int whole = bits / 8;
    if (!std::equal(m_bytes.begin(), m_bytes.begin() + whole, other.m_bytes.begin()))
        return false;
    const int rest = bits % 8;
    return rest == 0 || (m_bytes[size_t(whole)] ^ other.m_bytes[size_t(whole)]) >> (8 - rest) == 0;
}
