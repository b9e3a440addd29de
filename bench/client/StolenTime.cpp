#include "StolenTime.h"

#include <fstream>
#include <sched.h>
#include <sstream>
#include <string>
#include <unistd.h>

// /proc/stat has a line per processor, with ticks spent as user, nice, system, idle, iowait, irq,
// softirq and stolen.
StolenTime::Ticks StolenTime::now() {
    constexpr int StolenField = 8;
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    ::sched_getaffinity(0, sizeof allowed, &allowed);
    Ticks ticks;
    std::ifstream file("/proc/stat");
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string name;
        fields >> name;
        if (name.rfind("cpu", 0) != 0 || name.size() == 3 ||
            !CPU_ISSET(std::size_t(std::stoi(name.substr(3))), &allowed))
            continue;
        long value = 0;
        for (int field = 0; field < StolenField; ++field)
            fields >> value;
        ticks.stolen += value;
        ++ticks.processors;
    }
    return ticks;
}

double StolenTime::percent() const {
    const Ticks after = now();
    const double seconds = microsecondsSince(m_start) / 1e6;
    if (after.processors == 0 || seconds <= 0)
        return 0;
    const double stolen = double(after.stolen - m_before.stolen) / double(::sysconf(_SC_CLK_TCK));
    return 100 * stolen / (seconds * after.processors);
}
