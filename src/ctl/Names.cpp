#include "Names.h"

#include <algorithm>

#include "Arguments.h"
#include "ClientFailure.h"
#include "PathText.h"

namespace {
const QStringList Roles = {QStringLiteral("title"), QStringLiteral("path")};

// The number behind `list` in `path`, -1 when there is none: rows that do something else have other
// paths.
int idBelow(const QString& path, const QString& list) {
    const QStringList components = PathText::components(path);
    if (!path.startsWith(list + QLatin1Char('/')) ||
        components.size() != PathText::components(list).size() + 1)
        return -1;
    bool ok = false;
    const int id = components.last().toInt(&ok);
    return ok ? id : -1;
}
} // namespace

const QVector<Named>& Names::playlists() {
    if (!m_playlists.isEmpty())
        return m_playlists;
    const QString items = m_device->path(QStringLiteral("OrvoPlayListPlGetItemsPath"));
    m_playlists.append({QueueId, QStringLiteral("queue")});
    for (const QJsonObject& row :
         m_device->rows(m_device->path(QStringLiteral("OrvoPlayListPlGetlistPath")), Roles).rows) {
        const int id = idBelow(row.value(QStringLiteral("path")).toString(), items);
        if (id > QueueId)
            m_playlists.append({id, row.value(QStringLiteral("title")).toString()});
    }
    return m_playlists;
}

const QVector<Named>& Names::collections() {
    if (m_collectionsRead)
        return m_collections;
    m_collectionsRead = true;
    const QString items = m_device->path(QStringLiteral("OrvoPlayListClGetItemsPath"));
    for (const QJsonObject& row :
         m_device->rows(m_device->path(QStringLiteral("OrvoPlayListsRootPath")), Roles).rows) {
        const QString path = row.value(QStringLiteral("path")).toString();
        bool ok = false;
        const int id = PathText::parameter(path, QStringLiteral("clid")).toInt(&ok);
        if (ok && path.section(QLatin1Char('?'), 0, 0) == items)
            m_collections.append({id, row.value(QStringLiteral("title")).toString()});
    }
    return m_collections;
}

Named Names::find(const QVector<Named>& all, const QString& text, const QString& kind) {
    if (text.startsWith(QLatin1Char('#'))) {
        const int id = Arguments::toNumber(text.mid(1), 0, QStringLiteral("an id behind #"));
        const auto known =
            std::find_if(all.begin(), all.end(), [id](const Named& one) { return one.id == id; });
        return known == all.end() ? Named{id, QString()} : *known;
    }
    QVector<Named> found;
    QStringList ids;
    for (const Named& one : all) {
        if (one.name == text) {
            found.append(one);
            ids.append(QStringLiteral("#%1").arg(one.id));
        }
    }
    if (found.isEmpty())
        throw ClientFailure::refused(QStringLiteral("there is no %1 \"%2\"").arg(kind, text));
    if (found.size() > 1)
        throw ClientFailure::refused(QStringLiteral("more than one %1 is called \"%2\": %3")
                                         .arg(kind, text, ids.join(QStringLiteral(", "))));
    return found.first();
}

Named Names::playlist(const QString& text) {
    return find(playlists(), text, QStringLiteral("playlist"));
}

Named Names::collection(const QString& text) {
    return find(collections(), text, QStringLiteral("collection"));
}

QString Names::visible(const QString& name) {
    const QVector<uint> letters = name.toUcs4();
    const auto isUnseen = [](uint letter) {
        return QChar::isSpace(letter) || (QChar::category(letter) >= QChar::Other_Control &&
                                          QChar::category(letter) <= QChar::Other_NotAssigned);
    };
    if (!letters.isEmpty() && std::all_of(letters.begin(), letters.end(), isUnseen))
        throw ClientFailure::usage(QStringLiteral("a name needs something that can be seen"));
    return name;
}

QString Names::itemsPath(const Named& playlist) {
    return playlist.id == QueueId
               ? m_device->path(QStringLiteral("OrvoPlayListPqGetItemsPath"))
               : PathText::append(m_device->path(QStringLiteral("OrvoPlayListPlGetItemsPath")),
                                  {QString::number(playlist.id)});
}
