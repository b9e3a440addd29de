#pragma once

#include "orvo_api_export.h"

// Whether the process was told to end. The event loop hears of that by itself; what waits outside
// of it, for another process that holds a file, asks here now and then and gives up.
ORVO_API_EXPORT bool cmEndRequested() noexcept;

// For the host, from its signal handler. There is no way back.
ORVO_API_EXPORT void cmRequestEnd() noexcept;
