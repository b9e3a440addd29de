#pragma once

#include <optional>
#include <string>
#include <vector>

// A table of figures, each beside the bound it has to keep and the machine's load at that moment.
// Printed row by row as the figures come.
class Report {
public:
    struct Row {
        std::string work;
        std::string what; // "median", "99th percentile" …
        double value = 0;
        std::string unit;
        std::optional<double> bound; // the greatest value that is fine
        double load = 0;
    };

    explicit Report(const std::string& title);

    void add(const std::string& work, const std::string& what, double value,
             const std::string& unit, std::optional<double> bound = {});
    // A line below the table.
    void note(const std::string& text) { m_notes.push_back(text); }
    // The notes, and which bounds are broken. Returns how many.
    int finish() const;
    void writeJson(const std::string& file) const;

    static double machineLoad();
    static std::string machine();

private:
    std::vector<Row> m_rows;
    std::vector<std::string> m_notes;
};

// `text` as a JSON string, with its quotes.
std::string jsonQuoted(const std::string& text);
