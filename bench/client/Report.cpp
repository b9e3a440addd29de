#include "Report.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace {

bool isBroken(const Report::Row& row) {
    return row.bound && row.value > *row.bound;
}

// Three digits that count, without a power of ten.
std::string figure(double value) {
    char text[32];
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : 2;
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

} // namespace

double Report::machineLoad() {
    double load[1] = {0};
    return getloadavg(load, 1) == 1 ? load[0] : 0;
}

std::string Report::machine() {
    std::ifstream info("/proc/cpuinfo");
    std::string model = "unknown processor";
    for (std::string line; std::getline(info, line);) {
        if (line.rfind("model name", 0) == 0) {
            model = line.substr(line.find(':') + 2);
            break;
        }
    }
    return std::to_string(std::thread::hardware_concurrency()) + " x " + model;
}

Report::Report(const std::string& title) {
    std::printf("%s\n%s\n\n%-58s %-16s %10s %-6s %8s  %5s\n", title.c_str(), machine().c_str(),
                "work", "", "measured", "", "bound", "load");
}

void Report::add(const std::string& work, const std::string& what, double value,
                 const std::string& unit, std::optional<double> bound) {
    const Row row{work, what, value, unit, bound, machineLoad()};
    m_rows.push_back(row);
    std::printf("%-58s %-16s %10s %-6s %8s  %5.1f%s\n", work.c_str(), what.c_str(),
                figure(value).c_str(), unit.c_str(), bound ? figure(*bound).c_str() : "", row.load,
                isBroken(row) ? "  BROKEN" : "");
    std::fflush(stdout);
}

int Report::finish() const {
    std::printf("\n");
    for (const std::string& text : m_notes)
        std::printf("%s\n", text.c_str());
    int broken = 0;
    for (const Row& row : m_rows)
        broken += isBroken(row) ? 1 : 0;
    if (broken > 0)
        std::printf("%d of the bounds are broken\n", broken);
    else
        std::printf("all bounds are held\n");
    return broken;
}

void Report::writeJson(const std::string& file) const {
    if (file.empty())
        return;
    std::ofstream out(file);
    out << "[";
    const char* separator = "\n  ";
    for (const Row& row : m_rows) {
        out << separator << "{\"work\": " << jsonQuoted(row.work)
            << ", \"what\": " << jsonQuoted(row.what) << ", \"value\": " << row.value
            << ", \"unit\": " << jsonQuoted(row.unit);
        if (row.bound)
            out << ", \"bound\": " << *row.bound;
        out << ", \"load\": " << row.load << "}";
        separator = ",\n  ";
    }
    out << "\n]\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}

std::string jsonQuoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}
