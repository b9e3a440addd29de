#include "LibraryNode.h"

#include <algorithm>

#include "CMConnect.h"
#include "LibraryRoles.h"

namespace {
// Of each view: a few readers at a time.
constexpr std::size_t MaxKeptLists = 4;
} // namespace

LibraryNode::LibraryNode(const LibraryViews::View& view, LibraryIndex* index, CMNodes* nodes,
                         QObject* parent)
    : CMListRowsNode(LibraryViews::pathOf(view), parent), m_view(view), m_index(index) {
    setNodes(nodes);
    cmConnect(m_index, &LibraryIndex::changed, this, [this] { m_lists.clear(); });
}

LibraryNode::ListPtr LibraryNode::listAt(const CMPath& path) {
    const QString key = path.toString();
    const auto kept = std::find_if(m_lists.begin(), m_lists.end(),
                                   [&key](const auto& each) { return each.first == key; });
    ListPtr list;
    if (kept != m_lists.end()) {
        list = kept->second;
        m_lists.erase(kept);
    } else {
        list = std::make_shared<const LibraryList>(
            LibraryViews::list(*m_index->library(), m_view, path));
    }
    m_lists.emplace_front(key, list);
    if (m_lists.size() > MaxKeptLists)
        m_lists.pop_back();
    return list;
}

bool LibraryNode::getRowsRequest(const CMGetRowsRequest& request) {
    const ListPtr list = listAt(request.path());
    if (!list->error.name().isEmpty())
        request.reply().setError(list->error);
    else
        request.reply().setValue(answer(*m_index->library(), *list, request));
    return true;
}

bool LibraryNode::getDataRequest(const CMGetDataRequest& request) {
    const ListPtr list = listAt(request.path());
    if (!list->error.name().isEmpty())
        request.reply().setError(list->error);
    else
        request.reply().setValue(LibraryRoles::list(*list, request.path()));
    return true;
}

bool LibraryNode::matchRowRequest(const CMMatchRowRequest& request) {
    const ListPtr list = listAt(request.path());
    if (!list->error.name().isEmpty()) {
        request.reply().setError(list->error);
        return true;
    }
    const Library& library = *m_index->library();
    for (int row = qMax(0, request.fromRow()); row < int(list->rows.size()); ++row) {
        const TrString title = LibraryRoles::title(library, *list, list->rows[std::size_t(row)]);
        if (title.toString().contains(request.text(), Qt::CaseInsensitive)) {
            request.reply().setValue(row);
            return true;
        }
    }
    request.reply().setValue(-1);
    return true;
}

OrvoRowsRoles LibraryNode::answer(const Library& library, const LibraryList& list,
                                  const CMGetRowsRequest& request) {
    const QStringList names =
        request.roleNames().isEmpty() ? OrvoRoles::defaultNames() : request.roleNames();
    const int count = int(list.rows.size());
    QVariantList rows;
    if (count > 0) {
        const auto [from, to] = std::minmax(
            {qBound(0, request.fromRow(), count - 1), qBound(0, request.toRow(), count - 1)});
        for (int row = from; row <= std::min(to, from + MaxRowsAtOnce - 1); ++row)
            rows.append(QVariant(CMGlobal::itemRolesToList(
                names, LibraryRoles::row(library, list, list.rows[std::size_t(row)]))));
    }
    OrvoRowsRoles answer;
    answer.setRoles(LibraryRoles::list(list, request.path()));
    answer.setRows(rows);
    answer.setRowsCount(count);
    return answer;
}
