#include "RepeatedLogLines.h"

#include <utility>

void RepeatedLogLines::end() {
    const int leftOut = std::exchange(m_count, 0) - MaxWritten;
    if (leftOut <= 0 || !m_logger.isEnabledFor(m_level))
        return;
    const QString rest = QStringLiteral("and %1 more").arg(loggedNumber(leftOut));
    m_logger.log(m_level, rest.toStdString(), __FILE__, __LINE__);
}
