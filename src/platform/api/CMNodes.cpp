#include "CMNodes.h"

void CMNodes::remove(const CMPath& path, const CMNode* node) {
    const auto it = m_nodes.find(path.base());
    if (it != m_nodes.end() && it.value() == node)
        m_nodes.erase(it);
}

CMNode* CMNodes::find(const CMPath& path) const {
    const QString text = path.base();
    if (CMNode* node = m_nodes.value(text))
        return node;
    const int slash = text.lastIndexOf(QLatin1Char('/'));
    if (slash < 0)
        return nullptr;
    CMNodeFamily* family = m_families.value(text.left(slash));
    return family ? family->makeNode(text.mid(slash + 1)) : nullptr;
}

int CMNodes::count() const {
    int count = m_nodes.size();
    for (const CMNodeFamily* family : m_families)
        count += family->unmadeCount();
    return count;
}

CMNodeFamily::~CMNodeFamily() {
    if (m_registry && m_registry->m_families.value(m_parent) == this)
        m_registry->m_families.remove(m_parent);
}

void CMNodeFamily::addTo(CMNodes* nodes, const CMPath& parent) {
    m_registry = nodes;
    m_parent = parent.base();
    if (nodes)
        nodes->m_families.insert(m_parent, this);
}
