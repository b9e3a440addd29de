#include "CMNode.h"

CMNode::~CMNode() {
    unregister();
}

void CMNode::setNodes(CMNodes* nodes) {
    m_nodes = nodes;
    if (m_nodes)
        m_nodes->add(m_path, this);
}

void CMNode::unregister() {
    if (m_nodes)
        m_nodes->remove(m_path, this);
    m_nodes = nullptr;
}

void CMUINode::deleteLater() {
    unregister();
    QObject::deleteLater();
}

OrvoRoles CMUINode::getDataRoles(const QStringList& keys,
                                 const QMap<QString, QString>& params) const {
    OrvoRoles all;
    CMPath ownPath = path();
    ownPath.setParams(params);
    all.setTitle(m_title);
    all.setPath(ownPath);
    all.setType(OrvoRolesType::Container);
    if (!m_mediaData.isEmpty())
        all.setMediaData(m_mediaData);
    OrvoRoles chosen;
    for (const QString& key : keys) {
        if (all.contains(key))
            chosen.setAttribute(key, all.attribute(key));
    }
    return chosen;
}

bool CMUINode::getDataRequest(const CMGetDataRequest& request) {
    request.reply().setValue(getDataRoles(request.roleNames(), request.path().params()));
    return true;
}

QVariant CMContainerNode::getRoleData(const QString& role) const {
    return getDataRoles({role}, path().params()).attribute(role);
}

bool CMListRowsNode::matchRowRequest(const CMMatchRowRequest& request) {
    const CMReplyData<OrvoRowsRoles> rowsReply;
    const CMReply<int> reply = request.reply();
    const QString wanted = request.text();
    const int first = qMax(0, request.fromRow());
    if (!getRowsRequest(CMGetRowsRequest(request.path(), 0, CMGetRowsRequest::LastRow,
                                         {OrvoRoles::Title()}, rowsReply)))
        return false;
    // Not before: when no handler took the request, its answer is the worker's.
    rowsReply.onSuccess([reply, wanted, first](const OrvoRowsRoles& answer) {
        const QVariantList rows = answer.rows();
        for (int i = first; i < rows.size(); ++i) {
            const QString title = TrString::fromVariant(rows.at(i).toList().value(0)).toString();
            if (title.contains(wanted, Qt::CaseInsensitive)) {
                reply.setValue(i);
                return;
            }
        }
        reply.setValue(-1);
    });
    rowsReply.onError([reply](const CMError& error) { reply.setError(error); });
    return true;
}

void CMListRowsNode::rowsPathAdd(const CMPath&) {
    ++m_rowsReaders;
}

void CMListRowsNode::rowsPathRemove(const CMPath&) {
    m_rowsReaders = qMax(0, m_rowsReaders - 1);
}
