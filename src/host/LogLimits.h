#pragma once

// How much the log takes. 0 lifts a limit, but for `files`.
struct LogLimits {
    int lineBytes = 2048;
    // Lines alike of one request.
    int alike = 20;
    int fileBytes = 10 * 1024 * 1024;
    // The log file and the older ones beside it.
    int files = 5;
};
