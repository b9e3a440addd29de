#include "AddFolderJob.h"

#include <QJsonArray>
#include <QPointer>

#include "AsyncApi.h"
#include "BrowseRow.h"

namespace {
// Appended tracks go in parts, so that the progress shows and each request stays short.
constexpr int PartSize = 500;
constexpr int MaxDepth = 64;

const QStringList& kindRoles() {
    static const QStringList roles = {QStringLiteral("type"), QStringLiteral("path"),
                                      QStringLiteral("containerType")};
    return roles;
}
} // namespace

AddFolderJob::AddFolderJob(AsyncApi* api, const QVector<Source>& sources, const Target& target,
                           Mode mode)
    : m_api(api), m_target(target), m_mode(mode) {
    for (const Source& source : sources)
        m_items.push_back({source, {}});
}

void AddFolderJob::look() {
    while (!m_items.empty()) {
        const Item item = m_items.front();
        m_items.pop_front();
        if (item.source.kind == Source::Track) {
            addTrack(item.source.path);
        } else if (item.way.size() < MaxDepth && !item.way.contains(item.source.path)) {
            read(item);
            return;
        }
    }
    Q_EMIT looked();
}

void AddFolderJob::addTrack(const QString& path) {
    m_tracks.append(path);
    Q_EMIT found(m_tracks.size());
}

void AddFolderJob::read(const Item& list) {
    Q_EMIT found(m_tracks.size());
    m_api->readAll(list.source.path, kindRoles(), 0, AsyncApi::LastRow,
                   [self = QPointer<AddFolderJob>(this), list](const RowsAnswer& answer) {
                       if (self)
                           self->take(list, answer);
                   });
}

void AddFolderJob::take(const Item& list, const RowsAnswer& answer) {
    const bool isNoList = answer.status == HttpNotFound || answer.status == HttpRefused;
    if (list.source.kind == Source::Either && isNoList) {
        addTrack(list.source.path);
    } else if (!answer.error.isEmpty()) {
        Q_EMIT finished(answer.error, answer.status);
        return;
    }
    const QStringList way = list.way + QStringList(list.source.path);
    for (int i = answer.rows.size(); i-- > 0;) {
        const BrowseRow row(answer.rows.at(i));
        if (row.path().isEmpty())
            continue;
        if (row.type() == BrowseRow::Audio)
            m_items.push_front({{row.path(), Source::Track}, way});
        else if (row.opens() && !row.isMenu())
            m_items.push_front({{row.path(), Source::List}, way});
    }
    look();
}

void AddFolderJob::sendFrom(int from) {
    if (from >= m_tracks.size()) {
        Q_EMIT finished({}, HttpOk);
        return;
    }
    // Where a part goes depends on what plays, so parts would come out in another order: one
    // request takes all.
    const int count = m_mode == Append ? PartSize : m_tracks.size();
    Q_EMIT adding(from, m_tracks.size());
    m_api->post(m_target.command,
                QJsonObject{{QStringLiteral("plid"), m_target.plid},
                            {QStringLiteral("items"),
                             QJsonArray::fromStringList(m_tracks.mid(from, count))},
                            {QStringLiteral("mode"), int(m_mode)}},
                [self = QPointer<AddFolderJob>(this), from, count](const ApiAnswer& answer) {
                    if (!self)
                        return;
                    if (answer.error.isEmpty())
                        self->sendFrom(from + count);
                    else
                        Q_EMIT self->finished(answer.error, answer.status);
                });
}
