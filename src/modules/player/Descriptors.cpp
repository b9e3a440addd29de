#include "Descriptors.h"

#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

bool descriptorsAreFree(int count) {
    std::vector<int> opened;
    while (int(opened.size()) < count) {
        const int descriptor = opened.empty() ? eventfd(0, EFD_CLOEXEC) : dup(opened.front());
        if (descriptor < 0)
            break;
        opened.push_back(descriptor);
    }
    for (const int descriptor : opened)
        close(descriptor);
    return int(opened.size()) == count;
}
