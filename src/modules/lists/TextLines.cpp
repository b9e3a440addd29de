#include "TextLines.h"

#include <algorithm>

#include "ListLimits.h"

bool TextLines::next() {
    if (m_at >= m_text.size())
        return false;
    const auto isLineEnd = [](QChar each) {
        return each == QLatin1Char('\n') || each == QLatin1Char('\r');
    };
    const auto begin = m_text.cbegin() + m_at;
    const auto end = std::find_if(begin, m_text.cend(), isLineEnd);
    m_isTooLong = end - begin > ListLimits::MaxLineLength;
    m_line = m_isTooLong ? QString() : QString(begin, int(end - begin)).trimmed();
    ++m_number;
    m_at = int(end - m_text.cbegin()) + 1;
    const bool isPair = end != m_text.cend() && *end == QLatin1Char('\r') && m_at < m_text.size() &&
                        m_text.at(m_at) == QLatin1Char('\n');
    if (isPair)
        ++m_at;
    return true;
}
