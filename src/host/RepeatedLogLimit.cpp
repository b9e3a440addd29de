#include "RepeatedLogLimit.h"

#include <utility>

#include <QFileInfo>

#include "CMLog.h"

bool RepeatedLogLimit::admits(const log4cplus::spi::InternalLoggingEvent& event) {
    if (m_most == 0 || event.getLogLevel() >= log4cplus::FATAL_LOG_LEVEL ||
        std::this_thread::get_id() != m_thread)
        return true;
    const int line = event.getLine();
    const log4cplus::LogLevel level = event.getLogLevel();
    const auto kind = std::tie(line, level, event.getFile(), event.getLoggerName());
    auto found = m_lines.find(kind);
    if (found == m_lines.end())
        found = m_lines.emplace(kind, 0).first;
    return ++found->second <= m_most;
}

void RepeatedLogLimit::beginRequest() {
    for (const auto& [kind, count] : std::exchange(m_lines, {})) {
        if (count <= m_most)
            continue;
        const auto& [line, level, file, loggerName] = kind;
        const QString text = QStringLiteral("… and %1 more like this, from %2:%3")
                                 .arg(count - m_most)
                                 .arg(QFileInfo(QString::fromStdString(file)).fileName())
                                 .arg(line);
        log4cplus::Logger::getInstance(loggerName)
            .forcedLog(level, text.toStdString(), file.c_str(), line);
    }
    m_lines.clear();
}
