#include "AddFolderJob.h"

#include <QJsonArray>
#include <QPointer>

#include "AsyncApi.h"

namespace {
// Appended tracks go in parts, so that the progress shows and each request stays short.
constexpr int AddedAtOnce = 500;
constexpr int MaxDepth = 64;
} // namespace

AddFolderJob::AddFolderJob(AsyncApi* calls, const BrowseRow& what, const Target& target, Mode mode)
    : m_calls(calls), m_target(target), m_mode(mode) {
    m_items.push_back({what, 0, 0});
}

void AddFolderJob::look() {
    while (!m_items.empty()) {
        const Item item = m_items.front();
        m_items.pop_front();
        if (item.row.path().isEmpty())
            continue;
        if (item.row.type() == BrowseRow::Audio) {
            m_tracks.append(item.row.path());
        } else if (item.row.opens() && !item.row.isMenu() && item.depth < MaxDepth) {
            readOn(item);
            return;
        }
    }
    if (m_tracks.isEmpty())
        Q_EMIT finished({}, QStringLiteral("There are no tracks in it."));
    else
        send(0);
}

void AddFolderJob::readOn(const Item& folder) {
    Q_EMIT progress(QStringLiteral("Looking for tracks: %1").arg(m_tracks.size()));
    m_calls->read(
        folder.row.path(), folder.from, folder.from + AddedAtOnce - 1,
        [self = QPointer<AddFolderJob>(this), folder](const RowsAnswer& answer) {
            if (!self)
                return;
            if (!answer.error.isEmpty()) {
                Q_EMIT self->finished({}, answer.error);
                return;
            }
            const int read = folder.from + answer.rows.size();
            if (read < answer.count && !answer.rows.isEmpty())
                self->m_items.push_front({folder.row, read, folder.depth});
            for (int i = answer.rows.size(); i-- > 0;)
                self->m_items.push_front({BrowseRow(answer.rows.at(i)), 0, folder.depth + 1});
            self->look();
        });
}

void AddFolderJob::send(int from) {
    if (from >= m_tracks.size()) {
        Q_EMIT finished(QStringLiteral("%1 added to %2")
                            .arg(m_tracks.size() == 1
                                     ? QStringLiteral("1 track")
                                     : QStringLiteral("%1 tracks").arg(m_tracks.size()),
                                 m_target.name),
                        {});
        return;
    }
    // Behind what plays, parts would come out in another order: one request takes all.
    const int count = m_mode == Append ? AddedAtOnce : m_tracks.size();
    Q_EMIT progress(QStringLiteral("Adding %1 of %2").arg(from).arg(m_tracks.size()));
    m_calls->post(m_target.command,
                  {{QStringLiteral("plid"), m_target.plid},
                   {QStringLiteral("items"), QJsonArray::fromStringList(m_tracks.mid(from, count))},
                   {QStringLiteral("mode"), int(m_mode)}},
                  [self = QPointer<AddFolderJob>(this), from, count](const QJsonObject&,
                                                                     const QString& error, int) {
                      if (!self)
                          return;
                      if (error.isEmpty())
                          self->send(from + count);
                      else
                          Q_EMIT self->finished({}, error);
                  });
}
