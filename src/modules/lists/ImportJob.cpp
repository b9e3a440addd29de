#include "ImportJob.h"

#include <algorithm>

#include <QFileInfo>
#include <QTimer>

#include "ListsLog.h"
#include "ListText.h"
#include "NetworkItem.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

namespace {

// Adding so many takes a few milliseconds, which is what other requests wait.
constexpr std::size_t EntriesPerPart = 64;

// In the name of a playlist that has a part of its tracks.
QString unfinishedMark() {
    return TrString("Lists", "(import unfinished)").toString();
}

QVariant hintOf(const ListedTrack& track, const QStringList& files) {
    return QVariantHash{{QStringLiteral("files"), files},
                        {QStringLiteral("title"), track.title},
                        {QStringLiteral("artist"), track.artist},
                        {QStringLiteral("album"), track.album},
                        {QStringLiteral("duration"), track.durationMs}};
}

// What a person recognises the entry by.
QString shownText(const ListedTrack& track) {
    if (!track.location.isEmpty())
        return track.location;
    return track.artist.isEmpty() ? track.title
                                  : track.artist + QStringLiteral(" - ") + track.title;
}

} // namespace

void ImportJob::start() {
    const QVariantHash args = m_request.value().toHash();
    const auto text = [&args](const char* name) {
        return args.value(QString::fromLatin1(name)).toString();
    };
    if (args.contains(QStringLiteral("text")) == args.contains(QStringLiteral("bytes"))) {
        fail(refusal(TrString("Lists", "Either \"text\" or \"bytes\" is needed.")));
        return;
    }
    m_name = text("name");
    m_fileName = QFileInfo(text("file")).completeBaseName();
    m_base = text("base");
    Source source{text("text"), text("bytes"), text("format")};
    if (source.suffix.isEmpty())
        source.suffix = QFileInfo(text("file")).suffix();
    m_pool->start([this, source] {
        const auto result = std::make_shared<const ListReader::Result>(read(source));
        QMetaObject::invokeMethod(this, [this, result] { take(result); });
    });
}

ListReader::Result ImportJob::read(const Source& source) {
    if (source.bytes.isEmpty())
        return ListReader::read(source.text, source.suffix);
    const auto bytes = QByteArray::fromBase64Encoding(source.bytes.toLatin1(),
                                                      QByteArray::AbortOnBase64DecodingErrors);
    if (!bytes)
        return {{}, TrString("Lists", "\"bytes\" is not base64.")};
    return ListReader::read(ListText::decoded(*bytes), source.suffix);
}

void ImportJob::take(const ResultPtr& result) {
    m_file = result;
    if (!m_file->refusal.isEmpty()) {
        fail(refusal(m_file->refusal));
        return;
    }
    if (!m_request.value().toHash().contains(QStringLiteral("name"))) {
        const QStringList names = {m_file->list.name, m_fileName,
                                   TrString("Lists", "Imported").toString()};
        m_name = *std::find_if(names.begin(), names.end(),
                               [](const QString& name) { return !name.isEmpty(); });
    }
    if (m_file->list.tracks.empty())
        create(m_name, [this] { answer(); });
    else
        nextPart();
}

void ImportJob::nextPart() {
    const std::vector<ListedTrack>& tracks = m_file->list.tracks;
    if (m_next >= tracks.size()) {
        finish();
        return;
    }
    m_places.clear();
    QVariantList hints;
    for (std::size_t at = m_next; at < std::min(m_next + EntriesPerPart, tracks.size()); ++at) {
        const ListedTrack& track = tracks[at];
        m_places.push_back(TrackPlace::of(track.location, track.isUri, m_base));
        if (m_places.back().address.isEmpty())
            hints.append(hintOf(track, m_places.back().files));
    }
    if (hints.isEmpty())
        takeItems({});
    else
        invoke(CMPath(QStringLiteral("files:match")), hints,
               [this](const QVariant& found) { takeItems(found.toList()); });
}

void ImportJob::takeItems(const QVariantList& found) {
    QList<OrvoPlayListItem> items;
    int nextFound = 0;
    for (const TrackPlace& place : m_places) {
        const ListedTrack& track = m_file->list.tracks[m_next++];
        if (!place.address.isEmpty()) {
            items.append(NetworkItem::of(track, place.address));
            continue;
        }
        const OrvoPlayListItem item(found.value(nextFound++));
        if (!item.isEmpty())
            items.append(item);
        else
            m_notFound.append(QVariantHash{{QStringLiteral("line"), track.line},
                                           {QStringLiteral("text"), shownText(track)}});
    }
    if (items.isEmpty())
        later(&ImportJob::nextPart);
    else if (m_plid < 0)
        begin(items);
    else
        add(items);
}

void ImportJob::begin(const QList<OrvoPlayListItem>& items) {
    const auto addFirst = [this, items] {
        readRevision([this, items](const auto&) { add(items); });
    };
    if (m_name.isEmpty()) {
        create(m_name, addFirst);
        return;
    }
    // A name that leaves no room for the mark does without.
    create(m_name + QLatin1Char(' ') + unfinishedMark(), addFirst,
           [this, addFirst](const CMError&) { create(m_name, addFirst); });
}

void ImportJob::create(const QString& name, const std::function<void()>& then,
                       const OnError& otherwise) {
    OrvoPlayListPlCreate args;
    args.setName(name);
    const auto take = [this, then](const QVariant& result) {
        m_plid = OrvoActionReply(result).result().value().i32();
        then();
    };
    invoke(OrvoPlayListPlCreatePath(), args.toVariant(), take, otherwise);
}

void ImportJob::add(const QList<OrvoPlayListItem>& items) {
    OrvoPlayListPlAddExternalItems args;
    args.setPlid(m_plid);
    args.setItems(items);
    args.setRevision(m_revision);
    m_added += items.size();
    invoke(OrvoPlayListPlAddExternalItemsPath(), args.toVariant(), [this](const QVariant&) {
        readRevision([this](const auto&) {
            if (m_rowsCount < m_added)
                fail(refusal(
                    TrString("Lists", "The device has no room for all tracks of the list.")));
            else
                later(&ImportJob::nextPart);
        });
    });
}

void ImportJob::readRevision(const std::function<void(const OrvoRowsRoles&)>& then) {
    readRows(OrvoPlayListItemsPathOf(m_plid), 0, 0, {}, [this, then](const OrvoRowsRoles& rows) {
        m_revision = rows.revision();
        m_rowsCount = rows.rowsCount();
        then(rows);
    });
}

void ImportJob::later(void (ImportJob::*step)()) {
    QTimer::singleShot(0, this, [this, step] { (this->*step)(); });
}

void ImportJob::finish() {
    if (m_plid < 0) {
        answer();
        return;
    }
    readRevision([this](const OrvoRowsRoles& rows) {
        // A name that another client gave it stays.
        if (!rows.roles().title().toString().contains(unfinishedMark())) {
            answer();
            return;
        }
        OrvoPlayListPlSetName args;
        args.setPlid(m_plid);
        args.setName(m_name);
        invoke(OrvoPlayListPlSetNamePath(), args.toVariant(),
               [this](const QVariant&) { answer(); });
    });
}

void ImportJob::answer() {
    LOG4CPLUS_INFO(listsLog(), "imported " << m_added << " tracks to playlist id: " << m_plid
                                           << ", not found: " << m_notFound.size());
    QVariantHash result{{QStringLiteral("name"), m_name},
                        {QStringLiteral("added"), m_added},
                        {QStringLiteral("notFound"), m_notFound}};
    if (m_plid >= 0)
        result.insert(QStringLiteral("plid"), m_plid);
    end();
    m_request.reply().setValue(result);
}

void ImportJob::fail(const CMError& error) {
    LOG4CPLUS_WARN(listsLog(), "cannot import: " << error.message().toString());
    if (m_plid < 0) {
        refuse(error);
        return;
    }
    OrvoPlayListPlId args;
    args.setPlid(m_plid);
    args.setRevision(m_revision);
    // It stays where another client has changed it, and where the store takes nothing more.
    const auto tellWhatStays = [this, error](const CMError&) {
        refuse(CMError(error.name(),
                       TrString("Lists", "%1 Tracks added until then: %2.",
                                {error.message().toString(), QString::number(m_rowsCount)}),
                       error.title()));
    };
    invoke(
        OrvoPlayListPlDeletePath(), args.toVariant(),
        [this, error](const QVariant&) { refuse(error); }, tellWhatStays);
}

void ImportJob::refuse(const CMError& error) {
    end();
    m_request.reply().setError(error);
}

// Letting go of many thousand entries takes too long for the event loop.
void ImportJob::end() {
    m_pool->start([file = std::move(m_file)]() mutable { file.reset(); });
    deleteLater();
}
