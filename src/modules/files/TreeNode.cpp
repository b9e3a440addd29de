#include "TreeNode.h"

#include "MusicRoles.h"

namespace {

CMError noSuchNode(const CMPath& path) {
    return CMError(CMError::NoSuchNode(),
                   TrString("Files", "There is nothing at %1.", {path.toString()}),
                   CMError::DefaultTitle());
}

CMError noList(const CMPath& path) {
    return CMError(CMError::NotSupported(),
                   TrString("Files", "%1 is a track and lists nothing.", {path.toString()}),
                   CMError::DefaultTitle());
}

OrvoRoles chosen(const OrvoRoles& roles, const QStringList& names) {
    OrvoRoles result;
    for (const QString& name : names) {
        if (roles.contains(name))
            result.setAttribute(name, roles.attribute(name));
    }
    return result;
}

OrvoRoles rowRoles(const Folder& folder, int row) {
    const int folders = int(folder.folders.size());
    return row < folders ? MusicRoles::folder(*folder.folders[std::size_t(row)])
                         : MusicRoles::track(folder, *folder.tracks[std::size_t(row - folders)]);
}

} // namespace

TreeNode::TreeNode(MusicTree* tree, CMNodes* nodes, QObject* parent)
    : CMListRowsNode(MusicTree::rootPath(), parent), m_tree(tree) {
    setNodes(nodes);
}

bool TreeNode::getRowsRequest(const CMGetRowsRequest& request) {
    const MusicTree::Place place = m_tree->find(request.path());
    if (!place.folder || place.track) {
        request.reply().setError(place.folder ? noList(request.path())
                                              : noSuchNode(request.path()));
        return true;
    }
    m_tree->load(place.folder);
    const Folder& folder = *place.folder;
    const QStringList names =
        request.roleNames().isEmpty() ? OrvoRoles::defaultNames() : request.roleNames();
    const int count = folder.rowsCount();
    QVariantList rows;
    if (count > 0) {
        const int from = qBound(0, request.fromRow(), count - 1);
        const int to = qBound(0, request.toRow(), count - 1);
        for (int row = qMin(from, to); row <= qMax(from, to); ++row)
            rows.append(QVariant(CMGlobal::itemRolesToList(names, rowRoles(folder, row))));
    }
    OrvoRoles roles = chosen(MusicRoles::folder(folder), names);
    roles.setTitle(MusicRoles::title(folder));
    OrvoRowsRoles answer;
    answer.setRoles(roles);
    answer.setRows(rows);
    answer.setRowsCount(count);
    request.reply().setValue(answer);
    return true;
}

bool TreeNode::getDataRequest(const CMGetDataRequest& request) {
    const MusicTree::Place place = m_tree->find(request.path());
    if (!place.folder) {
        request.reply().setError(noSuchNode(request.path()));
        return true;
    }
    const OrvoRoles roles = place.track ? MusicRoles::track(*place.folder, *place.track)
                                        : MusicRoles::folder(*place.folder);
    request.reply().setValue(chosen(roles, request.roleNames().isEmpty() ? OrvoRoles::defaultNames()
                                                                         : request.roleNames()));
    return true;
}
