#include <QJsonArray>
#include <QUrl>

#include "ClientFailure.h"
#include "ClockText.h"
#include "TextTable.h"
#include "Verbs.h"

namespace {

constexpr int DefaultCount = 20;

const QStringList LibraryRoles = {QStringLiteral("title"), QStringLiteral("path"),
                                  QStringLiteral("mediaData")};

// What a search finds, in the order in which it is shown.
struct KindRow {
    const char* name; // of the list, and of the member of the JSON
    const char* shown;
};
constexpr KindRow Kinds[] = {{"artists", "artist"}, {"albums", "album"}, {"tracks", "track"}};

QString withParameter(const QString& path, const char* name, const QString& value) {
    return QStringLiteral("%1?%2=%3")
        .arg(path, QLatin1String(name), QString::fromLatin1(QUrl::toPercentEncoding(value)));
}

// A row of the library as programs get it: what it is called and where it is, and what else is
// known about it.
QJsonObject described(const QJsonObject& row) {
    QJsonObject entry{{QStringLiteral("title"), row.value(QStringLiteral("title"))},
                      {QStringLiteral("path"), row.value(QStringLiteral("path"))}};
    const QJsonObject metaData = row.value(QStringLiteral("mediaData"))
                                     .toObject()
                                     .value(QStringLiteral("metaData"))
                                     .toObject();
    for (const char* role : {"artist", "album", "year", "duration"}) {
        const QString name = QString::fromLatin1(role);
        if (metaData.contains(name))
            entry.insert(name, metaData.value(name));
    }
    return entry;
}

QString cell(const QJsonObject& entry, const char* name) {
    return entry.value(QLatin1String(name)).toString();
}

QJsonArray read(VerbContext& context, const QString& path, int last, int* count = nullptr) {
    const RowsAnswer answer = context.device.rows(path, LibraryRoles, 0, last);
    QJsonArray entries;
    for (const QJsonObject& row : answer.rows)
        entries.append(described(row));
    if (count)
        *count = answer.count;
    return entries;
}

void showFound(VerbContext& context, const QString& text) {
    const int last = context.arguments.number(QStringLiteral("count"), DefaultCount, 1) - 1;
    QJsonObject result;
    TextTable table({QStringLiteral("KIND"), QStringLiteral("TITLE"), QStringLiteral("ARTIST"),
                     QStringLiteral("ALBUM"), QStringLiteral(">TIME")});
    QStringList more;
    bool isEmpty = true;
    for (const KindRow& kind : Kinds) {
        const QString name = QString::fromLatin1(kind.name);
        int count = 0;
        const QJsonArray entries =
            read(context, withParameter(QStringLiteral("files:search/") + name, "text", text), last,
                 &count);
        result.insert(name, entries);
        result.insert(name + QStringLiteral("Count"), count);
        isEmpty = isEmpty && count == 0;
        if (count > entries.size())
            more.append(QStringLiteral("%1 %2").arg(count).arg(name));
        for (const QJsonValue& each : entries) {
            const QJsonObject entry = each.toObject();
            const bool isTrack = entry.contains(QStringLiteral("duration"));
            table.addRow({QLatin1String(kind.shown), cell(entry, "title"), cell(entry, "artist"),
                          isTrack ? cell(entry, "album") : QString(),
                          isTrack ? ClockText::ofDuration(
                                        qint64(entry.value(QStringLiteral("duration")).toDouble()))
                                  : QString()});
        }
    }
    if (context.output.isJson()) {
        context.output.json(result);
        return;
    }
    if (isEmpty) {
        context.output.done(QStringLiteral("nothing found"));
        return;
    }
    context.output.text(table.text());
    if (!more.isEmpty())
        context.output.done(
            QStringLiteral("%1 in all; --count shows more").arg(more.join(QStringLiteral(", "))));
}

} // namespace

void LibraryVerbs::artists(VerbContext& context) {
    const QJsonArray entries = read(context, QStringLiteral("files:artists"), Device::LastRow);
    if (context.output.isJson()) {
        context.output.json(entries);
        return;
    }
    TextTable table({QStringLiteral("ARTIST")});
    for (const QJsonValue& entry : entries)
        table.addRow({cell(entry.toObject(), "title")});
    context.output.text(table.text());
}

void LibraryVerbs::albums(VerbContext& context) {
    const QString artist = QStringLiteral("artist");
    const QString all = QStringLiteral("files:albums");
    const QString path = context.arguments.has(artist)
                             ? withParameter(all, "albumArtist", context.arguments.value(artist))
                             : all;
    const QJsonArray entries = read(context, path, Device::LastRow);
    if (context.output.isJson()) {
        context.output.json(entries);
        return;
    }
    TextTable table({QStringLiteral("ALBUM"), QStringLiteral("ARTIST"), QStringLiteral(">YEAR")});
    for (const QJsonValue& each : entries) {
        const QJsonObject entry = each.toObject();
        table.addRow({cell(entry, "title"), cell(entry, "artist"), cell(entry, "year")});
    }
    context.output.text(table.text());
}

void LibraryVerbs::search(VerbContext& context) {
    const Arguments& arguments = context.arguments;
    const QString add = QStringLiteral("add");
    const bool plays = arguments.has(QStringLiteral("play"));
    const QString text = arguments.positional().join(QLatin1Char(' '));
    if (plays && arguments.has(add))
        throw ClientFailure::usage(QStringLiteral("only one of --add and --play"));
    if (!plays && !arguments.has(add)) {
        showFound(context, text);
        return;
    }
    const Named playlist =
        context.lists.playlist(plays ? QStringLiteral("queue") : arguments.value(add));
    const QString found = withParameter(QStringLiteral("files:search/tracks"), "text", text);
    AddVerb::addSources(context, {{found, AddFolderJob::Source::List}}, playlist,
                        plays ? AddFolderJob::Now : AddFolderJob::Append);
}
