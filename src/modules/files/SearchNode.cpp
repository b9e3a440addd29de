#include "SearchNode.h"

#include "LibraryNode.h"
#include "LibraryRoles.h"

namespace {

QString textParameter() {
    return QStringLiteral("text");
}

CMError searchRefusal(const char* text, const QStringList& arguments = {}) {
    return CMError(CMError::InvalidValue(), TrString("Files", text, arguments),
                   CMError::DefaultTitle());
}

CMPath pathOfPart(const SearchNode::Part& part) {
    const QString name = QString::fromLatin1(part.name);
    return name.isEmpty() ? SearchNode::rootPath() : SearchNode::rootPath() + name;
}

} // namespace

const std::vector<SearchNode::Part>& SearchNode::parts() {
    static const std::vector<Part> all = {
        {"", "Found", LibraryList::Kind::Names, nullptr},
        {"artists", "Artists", LibraryList::Kind::Names, &SearchResult::artists},
        {"albums", "Albums", LibraryList::Kind::Albums, &SearchResult::albums},
        {"tracks", "Tracks", LibraryList::Kind::Tracks, &SearchResult::tracks},
    };
    return all;
}

CMPath SearchNode::rootPath() {
    static const CMPath path(QStringLiteral("files:search"));
    return path;
}

SearchNode::SearchNode(const Part& part, SearchQueue* queue, CMNodes* nodes, QObject* parent)
    : CMListRowsNode(pathOfPart(part), parent), m_part(part), m_queue(queue) {
    setNodes(nodes);
}

bool SearchNode::getRowsRequest(const CMGetRowsRequest& request) {
    const auto text = request.path().params().constFind(textParameter());
    if (text == request.path().params().cend()) {
        request.reply().setError(searchRefusal("The parameter \"text\" is missing."));
        return true;
    }
    if (text->size() > MaxSearchText) {
        request.reply().setError(searchRefusal("More than %1 characters are too long a search.",
                                               {QString::number(MaxSearchText)}));
        return true;
    }
    const QStringList words = SearchTexts::typedWords(*text);
    if (words.size() > MaxSearchWords) {
        request.reply().setError(searchRefusal("More than %1 words are too many for a search.",
                                               {QString::number(MaxSearchWords)}));
        return true;
    }
    m_queue->find(words, [this, request](const SearchQueue::ResultPtr& result) {
        if (!result)
            request.reply().setError(
                searchRefusal("Too many searches are under way. Please try again."));
        else
            request.reply().setValue(m_part.rows ? answer(*result, request)
                                                 : summary(*result, request));
    });
    return true;
}

OrvoRowsRoles SearchNode::answer(const SearchResult& result,
                                 const CMGetRowsRequest& request) const {
    LibraryList list;
    list.kind = m_part.kind;
    list.role = Library::AlbumArtist;
    list.title = TrString("Files", m_part.title);
    list.rows = result.*m_part.rows;
    return LibraryNode::answer(*result.library, list, request);
}

OrvoRowsRoles SearchNode::summary(const SearchResult& result,
                                  const CMGetRowsRequest& request) const {
    const QStringList names =
        request.roleNames().isEmpty() ? OrvoRoles::defaultNames() : request.roleNames();
    LibraryList list;
    QVariantList rows;
    for (const Part& part : parts()) {
        list.title = TrString("Files", part.title);
        if (!part.rows)
            continue;
        CMPath path = pathOfPart(part);
        path.setParams(request.path().params());
        OrvoRoles roles = LibraryRoles::list(list, path);
        roles.setRowsCount(int((result.*part.rows).size()));
        rows.append(QVariant(CMGlobal::itemRolesToList(names, roles)));
    }
    list.title = TrString("Files", m_part.title);
    OrvoRowsRoles answer;
    answer.setRoles(LibraryRoles::list(list, request.path()));
    answer.setRows(rows);
    answer.setRowsCount(rows.size());
    return answer;
}
