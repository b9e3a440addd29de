#include "ImportJob.h"

#include <algorithm>

#include <QFileInfo>
#include <QPointer>
#include <QTimer>

#include "CMRootWorker.h"
#include "ListLimits.h"
#include "ListsLog.h"
#include "ListText.h"
#include "NetworkItem.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "TrackPlace.h"

namespace {

// Adding so many takes a few milliseconds, which is what other requests wait.
constexpr std::size_t EntriesPerPart = 64;

CMError importRefusal(const TrString& why) {
    return CMError(CMError::InvalidValue(), why, CMError::DefaultTitle());
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

ImportJob::ImportJob(const CMSetDataRequest& request, QThreadPool* pool, QObject* parent)
    : QObject(parent), m_request(request), m_pool(pool) {}

void ImportJob::start() {
    const QVariantHash args = m_request.value().toHash();
    const auto text = [&args](const char* name) {
        return args.value(QString::fromLatin1(name)).toString();
    };
    Source source{text("text"), text("bytes"), text("format"), text("base")};
    if (source.text.isEmpty() == source.bytes.isEmpty()) {
        fail(importRefusal(TrString("Lists", "Either \"text\" or \"bytes\" is needed.")));
        return;
    }
    const QFileInfo file(text("file"));
    if (source.suffix.isEmpty())
        source.suffix = file.suffix();
    m_name = args.contains(QStringLiteral("name")) ? text("name") : QString();
    const QString fallback = file.completeBaseName();
    m_pool->start([this, source, fallback] {
        const DocumentPtr document = read(source);
        if (document->name.isEmpty())
            document->name = fallback;
        QMetaObject::invokeMethod(this, [this, document] { take(document); });
    });
}

ImportJob::DocumentPtr ImportJob::read(const Source& source) {
    auto document = std::make_shared<Document>();
    QString text = source.text;
    if (!source.bytes.isEmpty()) {
        const auto bytes = QByteArray::fromBase64Encoding(source.bytes.toLatin1(),
                                                          QByteArray::AbortOnBase64DecodingErrors);
        if (!bytes) {
            document->refusal = TrString("Lists", "\"bytes\" is not base64.");
            return document;
        }
        text = ListText::decoded(*bytes);
    }
    ListReader::Result result = ListReader::read(text, source.suffix);
    document->refusal = result.refusal;
    document->name = result.list.name;
    for (ListedTrack& track : result.list.tracks) {
        TrackPlace place = TrackPlace::of(track.location, track.isUri, source.base);
        document->entries.push_back({std::move(track), place.address, place.files});
    }
    return document;
}

void ImportJob::take(const DocumentPtr& document) {
    m_document = document;
    if (!document->refusal.isEmpty()) {
        fail(importRefusal(document->refusal));
        return;
    }
    if (m_name.isEmpty() && !m_request.value().toHash().contains(QStringLiteral("name")))
        m_name =
            document->name.isEmpty() ? TrString("Lists", "Imported").toString() : document->name;
    if (document->entries.empty())
        create({});
    else
        nextPart();
}

void ImportJob::nextPart() {
    if (m_next >= m_document->entries.size()) {
        answer();
        return;
    }
    QVariantList hints;
    const std::size_t end = std::min(m_next + EntriesPerPart, m_document->entries.size());
    for (std::size_t at = m_next; at < end; ++at) {
        const Entry& entry = m_document->entries[at];
        if (entry.address.isEmpty())
            hints.append(hintOf(entry.track, entry.files));
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
    const std::size_t end = std::min(m_next + EntriesPerPart, m_document->entries.size());
    for (; m_next < end; ++m_next) {
        const Entry& entry = m_document->entries[m_next];
        if (!entry.address.isEmpty()) {
            items.append(NetworkItem::of(entry.track, entry.address));
            continue;
        }
        const OrvoPlayListItem item(found.value(nextFound++));
        if (!item.isEmpty())
            items.append(item);
        else
            m_notFound.append(QVariantHash{{QStringLiteral("line"), entry.track.line},
                                           {QStringLiteral("text"), shownText(entry.track)}});
    }
    if (items.isEmpty())
        later(&ImportJob::nextPart);
    else if (m_plid < 0)
        create(items);
    else
        add(items);
}

void ImportJob::create(const QList<OrvoPlayListItem>& items) {
    OrvoPlayListPlCreate args;
    args.setName(m_name);
    invoke(OrvoPlayListPlCreatePath(), args.toVariant(), [this, items](const QVariant& result) {
        m_plid = OrvoActionReply(result).result().value().i32();
        readRevision([this, items] {
            if (items.isEmpty())
                answer();
            else
                add(items);
        });
    });
}

void ImportJob::add(const QList<OrvoPlayListItem>& items) {
    OrvoPlayListPlAddExternalItems args;
    args.setPlid(m_plid);
    args.setItems(items);
    args.setRevision(m_revision);
    m_added += items.size();
    invoke(OrvoPlayListPlAddExternalItemsPath(), args.toVariant(), [this](const QVariant&) {
        readRevision([this] {
            if (m_rowsCount < m_added)
                fail(importRefusal(
                    TrString("Lists", "The device has no room for all tracks of the list.")));
            else
                later(&ImportJob::nextPart);
        });
    });
}

void ImportJob::readRevision(const std::function<void()>& then) {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(
        CMGetRowsRequest(OrvoPlayListPlGetItemsPath() + QString::number(m_plid), 0, 0, {}, reply));
    const QPointer<ImportJob> alive(this);
    reply.onError([alive](const CMError& error) {
        if (alive)
            alive->fail(error);
    });
    reply.onSuccess([alive, then](const OrvoRowsRoles& rows) {
        if (!alive)
            return;
        alive->m_revision = rows.revision();
        alive->m_rowsCount = rows.rowsCount();
        then();
    });
}

void ImportJob::later(void (ImportJob::*step)()) {
    QTimer::singleShot(0, this, [this, step] { (this->*step)(); });
}

void ImportJob::invoke(const CMPath& path, const QVariant& args,
                       const std::function<void(const QVariant&)>& then) {
    const CMReply<QVariant> reply;
    CMRoot()->invoke(path, args, reply);
    const QPointer<ImportJob> alive(this);
    reply.onError([alive](const CMError& error) {
        if (alive)
            alive->fail(error);
    });
    reply.onSuccess([alive, then](const QVariant& value) {
        if (alive)
            then(value);
    });
}

void ImportJob::answer() {
    LOG4CPLUS_INFO(listsLogger(), "imported " << m_added << " tracks to playlist id: " << m_plid
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
    LOG4CPLUS_WARN(listsLogger(), "cannot import: " << error.message().toString());
    if (m_plid >= 0) {
        OrvoPlayListPlId args;
        args.setPlid(m_plid);
        args.setRevision(m_revision);
        CMRoot()->invoke(OrvoPlayListPlDeletePath(), args.toVariant(), {});
    }
    end();
    m_request.reply().setError(error);
}

// Letting go of many thousand entries takes too long for the event loop.
void ImportJob::end() {
    m_pool->start([document = std::move(m_document)]() mutable { document.reset(); });
    deleteLater();
}
