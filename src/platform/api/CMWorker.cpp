#include "CMWorker.h"

#include "CMNode.h"
#include "CMRootWorker.h"

namespace {
CMError noSuchNode(const CMPath& path) {
    return CMError(CMError::NoSuchNode(),
                   TrString("CMWorker", "There is nothing at %1.", {path.toString()}),
                   CMError::DefaultTitle());
}

CMError notSupported(const CMPath& path) {
    return CMError(CMError::NotSupported(),
                   TrString("CMWorker", "%1 does not do that.", {path.toString()}),
                   CMError::DefaultTitle());
}
} // namespace

CMNodesWorker::CMNodesWorker(const QHash<QString, QVariant>& config, const QString& name)
    : m_config(config), m_name(name) {
    CMRoot()->addWorker(prefix(), this, &m_subscribe);
}

CMNodesWorker::~CMNodesWorker() {
    if (CMRootWorker* root = CMRootWorker::instance())
        root->removeWorker(prefix(), this);
}

template <typename Request, typename Call>
void CMNodesWorker::offerToNode(const Request& request, Call call) {
    CMNode* node = m_nodes.find(request.path());
    if (!node) {
        request.reply().setError(noSuchNode(request.path()));
        return;
    }
    const auto* uiNode = qobject_cast<CMUINode*>(node);
    if ((uiNode && uiNode->isDisabled()) || !(node->*call)(request))
        request.reply().setError(notSupported(request.path()));
}

QVariant CMNodesWorker::getValue(const CMPath&) {
    return {};
}

void CMNodesWorker::setValue(const CMPath& path, const QVariant&, const CMVoidReply& reply) {
    reply.setError(noSuchNode(path));
}

void CMNodesWorker::setDataRequest(const CMSetDataRequest& request) {
    offerToNode(request, &CMNode::setDataRequest);
}

void CMNodesWorker::getRowsRequest(const CMGetRowsRequest& request) {
    offerToNode(request, &CMNode::getRowsRequest);
}

void CMNodesWorker::getDataRequest(const CMGetDataRequest& request) {
    offerToNode(request, &CMNode::getDataRequest);
}

void CMNodesWorker::matchRowRequest(const CMMatchRowRequest& request) {
    offerToNode(request, &CMNode::matchRowRequest);
}
