#include "OpenFiles.h"

#include <algorithm>
#include <limits>
#include <sys/resource.h>

long OpenFiles::raiseLimit() {
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0)
        return 0;
    const rlimit raised = {files.rlim_max, files.rlim_max};
    if (setrlimit(RLIMIT_NOFILE, &raised) == 0)
        files = raised;
    constexpr rlim_t MaxLong = std::numeric_limits<long>::max();
    return long(std::min(files.rlim_cur, MaxLong));
}
