#include "CMNodes.h"

void CMNodes::remove(const CMPath& path, const CMNode* node) {
    const auto it = m_nodes.find(path.base());
    if (it != m_nodes.end() && it.value() == node)
        m_nodes.erase(it);
}
