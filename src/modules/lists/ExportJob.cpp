#include "ExportJob.h"

#include <algorithm>
#include <iterator>

#include <QRegularExpression>
#include <QTimer>

#include "CMRootWorker.h"
#include "ListsLog.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

namespace {

constexpr int RowsPerPart = 100;
constexpr int PlayQueueId = 0;

struct PathsRow {
    const char* name;
    TrackAddress::Paths paths;
};
constexpr PathsRow KindsOfPaths[] = {
    {"relative", TrackAddress::Paths::Relative},
    {"absolute", TrackAddress::Paths::Absolute},
    {"url", TrackAddress::Paths::Url},
};

ListedTrack trackOf(const QVariantList& row) {
    ListedTrack track;
    track.title = TrString::fromVariant(row.value(0)).toString();
    const OrvoMediaData mediaData(row.value(1));
    const OrvoMetaData metaData = mediaData.metaData();
    track.artist = metaData.artist();
    track.album = metaData.album();
    track.artworkUrl = metaData.artworkUrl();
    track.durationMs = metaData.duration();
    if (!mediaData.resources().isEmpty())
        track.location = mediaData.resources().constFirst().uri();
    if (ListWriter::plain(track.title).isEmpty())
        track.title = track.location;
    return track;
}

// A name for the file that every system takes.
QString fileNameOf(const QString& name, const QString& suffix) {
    constexpr int MaxLetters = 60;
    static const QRegularExpression forbidden(QStringLiteral("[\\\\/:*?\"<>|]"));
    static const QRegularExpression around(QStringLiteral("^[.\\s]+|[.\\s]+$"));
    QString plain = ListWriter::plain(name).replace(forbidden, QStringLiteral("_"));
    plain = plain.left(MaxLetters).remove(around);
    return (plain.isEmpty() ? QStringLiteral("playlist") : plain) + QLatin1Char('.') + suffix;
}

} // namespace

void ExportJob::start() {
    if (readArguments())
        findName();
}

bool ExportJob::readArguments() {
    const QVariantHash args = m_request.value().toHash();
    const auto text = [&args](const char* name, const char* otherwise) {
        return args.value(QString::fromLatin1(name), QString::fromLatin1(otherwise)).toString();
    };
    m_plid = OrvoPlayListPlId(args).plid();
    m_format = ListFormats::ofSuffix(text("format", "m3u8"));
    if (!m_format || !m_format->write) {
        fail(refusal(TrString("Lists", "The format must be m3u8 or xspf.")));
        return false;
    }
    const QString wanted = text("paths", "relative");
    const auto* const row = std::find_if(
        std::begin(KindsOfPaths), std::end(KindsOfPaths),
        [&wanted](const PathsRow& each) { return wanted == QLatin1String(each.name); });
    if (row == std::end(KindsOfPaths)) {
        fail(refusal(TrString("Lists", "The paths must be relative, absolute or url.")));
        return false;
    }
    m_paths = row->paths;
    m_musicFolder =
        OrvoValue(CMRoot()->getValue(CMPath(QStringLiteral("files:musicFolder")))).string();
    return true;
}

void ExportJob::findName() {
    if (m_plid == PlayQueueId) {
        m_list.name = TrString("Lists", "Play queue").toString();
        nextPart();
        return;
    }
    readRows(OrvoPlayListPlGetlistPath(), 0, CMGetRowsRequest::LastRow,
             {OrvoRoles::Title(), OrvoRoles::Path()},
             [this](const OrvoRowsRoles& lists) { takeName(lists); });
}

void ExportJob::takeName(const OrvoRowsRoles& lists) {
    const CMPath wanted = OrvoPlayListItemsPathOf(m_plid);
    const QVariantList rows = lists.rows();
    const auto found = std::find_if(rows.cbegin(), rows.cend(), [&wanted](const QVariant& row) {
        return CMPath::fromQVariant(row.toList().value(1)) == wanted;
    });
    if (found == rows.cend()) {
        fail(refusal(TrString("Lists", "There is no playlist with this ID.")));
        return;
    }
    m_list.name = TrString::fromVariant(found->toList().value(0)).toString();
    nextPart();
}

void ExportJob::nextPart() {
    const int from = int(m_list.tracks.size());
    readRows(OrvoPlayListItemsPathOf(m_plid), from, from + RowsPerPart - 1,
             {OrvoRoles::Title(), OrvoRoles::MediaData()},
             [this](const OrvoRowsRoles& rows) { takeRows(rows); });
}

void ExportJob::takeRows(const OrvoRowsRoles& rows) {
    if (m_revision < 0)
        m_revision = rows.revision();
    if (rows.revision() != m_revision) {
        fail(CMError(CMError::Conflict(), TrString("Lists", "The playlist has changed meanwhile."),
                     CMError::DefaultTitle()));
        return;
    }
    for (const QVariant& row : rows.rows())
        m_list.tracks.push_back(trackOf(row.toList()));
    const bool isDone = rows.rows().isEmpty() || int(m_list.tracks.size()) >= rows.rowsCount();
    if (isDone)
        write();
    else
        QTimer::singleShot(0, this, [this] { nextPart(); });
}

void ExportJob::write() {
    const bool areUris = m_format->areUris;
    const TrackAddress address(m_paths, areUris, m_musicFolder);
    m_pool->start([this, address, list = std::move(m_list), format = m_format]() mutable {
        for (ListedTrack& track : list.tracks) {
            track.location = address.of(track.location);
            track.artworkUrl = address.of(track.artworkUrl);
        }
        const QByteArray bytes = format->write(list);
        QMetaObject::invokeMethod(this,
                                  [this, bytes, name = list.name, count = int(list.tracks.size())] {
                                      answer(bytes, name, count);
                                  });
    });
}

void ExportJob::answer(const QByteArray& bytes, const QString& name, int count) {
    LOG4CPLUS_INFO(listsLog(), "exported " << count << " tracks of playlist id: " << m_plid);
    deleteLater();
    m_request.reply().setValue(QVariantHash{
        {QStringLiteral("name"), name},
        {QStringLiteral("file"), fileNameOf(name, QString::fromLatin1(m_format->suffix))},
        {QStringLiteral("mimeType"), QString::fromLatin1(m_format->mimeType)},
        {QStringLiteral("tracks"), count},
        {QStringLiteral("text"), QString::fromUtf8(bytes)}});
}

void ExportJob::fail(const CMError& error) {
    deleteLater();
    m_request.reply().setError(error);
}
