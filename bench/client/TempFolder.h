#pragma once

#include <filesystem>
#include <stdexcept>
#include <stdlib.h>

// A folder of this run's own below `parent`, gone with this object.
class TempFolder {
public:
    explicit TempFolder(const std::filesystem::path& parent) {
        std::string name = (parent / "orvo-bench-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("cannot make a folder in " + parent.string());
        m_path = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};
