#include "JsonBuffer.h"

namespace {

constexpr int FirstBytes = 4096;
// What is written to a full buffer goes here, over and over.
constexpr int SpareBytes = 256;
// Doubling stays below the largest size that a byte array has.
constexpr int LargestBytes = 1 << 30;

} // namespace

JsonBuffer::JsonBuffer(int maxBytes) : m_maxBytes(qMin(maxBytes, LargestBytes)) {}

void JsonBuffer::makeRoom() {
    int used = m_bytes.size();
    if (m_isFull || used >= m_maxBytes) {
        m_isFull = true;
        m_bytes = QByteArray(SpareBytes, Qt::Uninitialized);
        used = 0;
    } else {
        const qint64 size = qMax<qint64>(FirstBytes, 2 * qint64(used));
        m_bytes.resize(int(qMin<qint64>(size, m_maxBytes)));
    }
    m_at = m_bytes.data() + used;
    m_end = m_bytes.data() + m_bytes.size();
}

QByteArray JsonBuffer::take() {
    if (m_isFull)
        return {};
    m_bytes.chop(int(m_end - m_at));
    m_at = m_end = nullptr;
    return std::move(m_bytes);
}
