#include "HttpLimits.h"

#include <algorithm>

namespace {

// Even where the reserve suffers: a device without connections is of no use.
constexpr long MinConnections = 4;
constexpr long MinFiles = 2;

} // namespace

bool HttpLimits::fitInto(long openFiles) {
    const long left = openFiles - ReservedFiles - SpareConnections;
    if (left >= long(connections) + files)
        return false;
    files = int(std::min<long>(files, std::max(MinFiles, left / 3)));
    connections = int(std::min<long>(connections, std::max(MinConnections, left - files)));
    eventStreams = std::min(eventStreams, connections / 2);
    return true;
}
