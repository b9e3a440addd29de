#pragma once

#include "TrustedProxies.h"

// How much the server takes before it says no; docs/http-api.md names the keys. A value.
struct HttpLimits {
    int connections = 512;
    int connectionsPerAddress = 320;
    int headBytes = 32 * 1024; // the request line and the header fields
    int headerFields = 64;
    int bodyBytes = 8 * 1024 * 1024;
    int bodiesBytes = 32 * 1024 * 1024;   // of all requests that are under way together
    int answersBytes = 128 * 1024 * 1024; // of all answers that are not taken yet, files aside
    int files = 320;                      // that are being sent
    int eventStreams = 256;               // more would use up the connections that requests need
    int idleMs = 120000;
    int requestMs = 60000;
    TrustedProxies proxies;

    // Lowers what needs descriptors to what a process can have that may open so many files. False
    // when nothing had to be lowered.
    bool fitInto(long openFiles);

    // Those that are on their way out when others come in.
    static constexpr int SpareConnections = 8;
    // For all that is no connection: what the process has open when it rests (about 15), the
    // output, a track that sounds and the next one (up to 16 each), the store's journal.
    static constexpr int ReservedFiles = 48;
};
