#include "Lists.h"

#include "PathText.h"

namespace {
const QStringList NameRoles = {QStringLiteral("title"), QStringLiteral("path")};
}

const QVector<Named>& Lists::playlists() {
    if (m_playlists.isEmpty())
        m_playlists = Names::playlists(
            m_device->rows(m_device->path(QStringLiteral("OrvoPlayListPlGetlistPath")), NameRoles)
                .rows,
            m_device->path(QStringLiteral("OrvoPlayListPlGetItemsPath")));
    return m_playlists;
}

const QVector<Named>& Lists::collections() {
    if (!m_collections)
        m_collections = Names::collections(
            m_device->rows(m_device->path(QStringLiteral("OrvoPlayListsRootPath")), NameRoles).rows,
            m_device->path(QStringLiteral("OrvoPlayListClGetItemsPath")));
    return *m_collections;
}

Named Lists::playlist(const QString& text) {
    return Names::find(playlists(), text, QStringLiteral("playlist"));
}

Named Lists::collection(const QString& text) {
    return Names::find(collections(), text, QStringLiteral("collection"));
}

QString Lists::itemsPath(const Named& playlist) {
    return playlist.id == Names::QueueId
               ? m_device->path(QStringLiteral("OrvoPlayListPqGetItemsPath"))
               : PathText::append(m_device->path(QStringLiteral("OrvoPlayListPlGetItemsPath")),
                                  {QString::number(playlist.id)});
}
