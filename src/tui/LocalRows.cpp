#include "LocalRows.h"

#include <QJsonArray>
#include <QTimer>

#include "AsyncApi.h"
#include "BrowseRow.h"

namespace {

struct MusicRow {
    const char* title;
    const char* path;
};
constexpr MusicRow MusicRows[] = {
    {"Music", "files:tree"},    {"Artists", "files:artists"},       {"Albums", "files:albums"},
    {"Genres", "files:genres"}, {"Recently added", "files:recent"},
};

} // namespace

void LocalRows::read(const QString&, int from, int to, const Done& done) {
    RowsAnswer answer;
    answer.title = m_title;
    answer.count = m_rows.size();
    answer.rows = m_rows.mid(from, to - from + 1);
    QTimer::singleShot(0, [done, answer] { done(answer); });
}

QJsonObject LocalRows::action(const QString& title, const QString& path) {
    return {{QStringLiteral("title"), title},
            {QStringLiteral("path"), path},
            {QStringLiteral("type"), int(BrowseRow::Action)}};
}

QJsonObject LocalRows::note(const QString& title, const QString& text) {
    return {{QStringLiteral("title"), title},
            {QStringLiteral("path"), title},
            {QStringLiteral("type"), int(BrowseRow::Editable)},
            {QStringLiteral("value"), QJsonObject{{QStringLiteral("string"), text}}}};
}

void HomeRows::read(const QString&, int, int, const Done& done) {
    const auto tree = [](const char* title, const QString& path) {
        return QJsonObject{{QStringLiteral("title"), QLatin1String(title)},
                           {QStringLiteral("path"), path},
                           {QStringLiteral("type"), int(BrowseRow::Container)}};
    };
    m_api->get(QStringLiteral("/api/modules"), {},
               [=, root = m_playListsRoot](const ApiAnswer& found) {
                   const QJsonArray modules = found.body.value(QLatin1String("modules")).toArray();
                   RowsAnswer answer;
                   answer.error = found.error;
                   answer.status = found.status;
                   answer.title = QStringLiteral("Orvo");
                   if (modules.contains(QStringLiteral("playlists")))
                       answer.rows.append(tree("Playlists", root));
                   if (modules.contains(QStringLiteral("files"))) {
                       for (const MusicRow& row : MusicRows)
                           answer.rows.append(tree(row.title, QLatin1String(row.path)));
                   }
                   answer.count = answer.rows.size();
                   done(answer);
               });
}

bool HomeRows::isMusic(const QString& path) {
    return path.startsWith(QLatin1String("files:"));
}
