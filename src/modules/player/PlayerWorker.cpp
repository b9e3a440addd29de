#include "PlayerWorker.h"

#include <utility>

#include <QJsonDocument>
#include <QJsonObject>

#include "CMConnect.h"
#include "CMRootWorker.h"
#include "PlayerLog.h"

namespace {

// A slider that is dragged is one change to keep, not fifty.
constexpr int KeepVolumeAfterMs = 1000;
constexpr int DefaultVolume = AudioOutput::MaxVolume;

OrvoValue text(const QString& value) {
    return OrvoValue::fromString(value);
}

OrvoValue sleepTimer(const SleepTimer& timer) {
    return timer.isAtEndOfTrack() ? text(OrvoPlayerSleepTimerArgs::EndOfTrack())
                                  : OrvoValue::fromI64(timer.leftMs());
}

// The setting is one text. What is none reads as no place.
QString resumePointText(const OrvoPlayerResumePoint& point) {
    if (point.isEmpty())
        return {};
    const QJsonObject object = QJsonObject::fromVariantHash(point.toHash());
    const QString text = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    return text.size() <= CMValueStore::MaxTextLength ? text : QString();
}

OrvoPlayerResumePoint resumePoint(const QString& text) {
    const OrvoPlayerResumePoint stored(
        QJsonDocument::fromJson(text.toUtf8()).object().toVariantHash());
    OrvoPlayerResumePoint point;
    if (stored.trackPath().isEmpty() || stored.position() < 0)
        return point;
    point.setMediaPath(stored.mediaPath());
    point.setTrackPath(stored.trackPath());
    point.setPosition(stored.position());
    return point;
}

QVariant bare(const QVariant& value) {
    if (value.type() != QVariant::Hash && value.type() != QVariant::Map)
        return value;
    const OrvoValue tagged(value);
    return tagged.attribute(tagged.tag());
}

} // namespace

const QList<PlayerWorker::CommandRow>& PlayerWorker::commandRows() {
    using T = PlayerTransport;
    static const QList<CommandRow> rows = {
        {OrvoPlayerPlayContainerPath(), &T::playContainer},
        {OrvoPlayerPausePath(), &T::pause},
        {OrvoPlayerResumePath(), &T::resume},
        {OrvoPlayerStopPath(), &T::stop},
        {OrvoPlayerSeekTimePath(), &T::seekTime},
        {OrvoPlayerNextPath(), &T::next},
        {OrvoPlayerPreviousPath(), &T::previous},
        {OrvoPlayerSetPlayModePath(), &T::setPlayMode},
        {OrvoPlayerSetVolumePath(), &T::setVolume},
        {OrvoPlayerSleepTimerPath(), &T::setSleepTimer},
    };
    return rows;
}

const QList<PlayerWorker::ValueRow>& PlayerWorker::valueRows() {
    using T = PlayerTransport;
    static const QList<ValueRow> rows = {
        {.path = OrvoPlayerStatePath(),
         .read = [](const T& t) { return text(OrvoPlayerState::toString(t.state())); }},
        {.path = OrvoPlayerDataPath(),
         .read = [](const T& t) { return OrvoValue(t.data().toHash()); }},
        {.path = OrvoPlayerNextMediaPath(),
         .read = [](const T& t) { return OrvoValue(t.nextMedia().toHash()); }},
        {.path = OrvoPlayerPlayModePath(),
         .read = [](const T& t) { return text(OrvoPlayerPlayMode::toString(t.playMode())); },
         .write = &T::setPlayMode,
         .argument = OrvoPlayLogicChangePlayModeArgs::PlayMode()},
        {.path = OrvoPlayerPositionPath(),
         .read = [](const T& t) { return OrvoValue::fromI64(t.position()); },
         .publishedByItself = true,
         .write = &T::seekTime,
         .argument = OrvoPlayerSeekTimeArgs::Time()},
        {.path = OrvoPlayerDurationPath(),
         .read = [](const T& t) { return OrvoValue::fromI64(t.duration()); }},
        {.path = OrvoPlayerVolumePath(),
         .read = [](const T& t) { return OrvoValue::fromI32(t.volume()); },
         .write = &T::setVolume,
         .argument = OrvoPlayerVolumeArgs::Volume()},
        {.path = OrvoPlayerResumePointPath(),
         .read = [](const T& t) { return OrvoValue(t.resumePoint().toHash()); }},
        {.path = OrvoPlayerSleepTimerPath(),
         .read = [](const T& t) { return sleepTimer(t.sleepTimer()); },
         .publishedByItself = true,
         .write = &T::setSleepTimer,
         .argument = OrvoPlayerSleepTimerArgs::Time()},
    };
    return rows;
}

const PlayerWorker::ValueRow* PlayerWorker::valueRow(const CMPath& path) {
    const QString base = path.base();
    for (const ValueRow& row : valueRows()) {
        if (row.path.base() == base)
            return &row;
    }
    return nullptr;
}

PlayerWorker::PlayerWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, QStringLiteral("Player")),
      m_transport(config.value(QStringLiteral("player/audioSink")).toString(), SourceRules(config)),
      m_position(m_transport, subscribe()) {
    takeVolume(OrvoValue(CMRoot()->getValue(OrvoPlayerSettingsVolumePath())));
    takeResumePoint(OrvoValue(CMRoot()->getValue(OrvoPlayerSettingsResumePointPath())));
    for (const ValueRow& row : valueRows())
        m_published.insert(row.path.base(), row.read(m_transport));
    cmConnect(&m_transport, &PlayerTransport::changed, this, &PlayerWorker::publishSoon);
    cmConnect(&m_position, &PositionPublisher::ticked, this, &PlayerWorker::publishSoon);
    cmConnect(&m_transport, &PlayerTransport::sleepTimerChanged, this,
              &PlayerWorker::publishSleepTimer);
    m_volumeTimer.setSingleShot(true);
    cmConnect(&m_volumeTimer, &QTimer::timeout, this, &PlayerWorker::keepVolume);
    auto* stored = new CMValueItem(this, OrvoPlayerSettingsVolumePath());
    cmConnect(stored, &CMValueItem::changed, this, &PlayerWorker::takeVolume);
    auto* point = new CMValueItem(this, OrvoPlayerSettingsResumePointPath());
    cmConnect(point, &CMValueItem::changed, this, &PlayerWorker::takeResumePoint);
}

PlayerWorker::~PlayerWorker() {
    if (m_volumeTimer.isActive())
        keepVolume();
    m_transport.noteResumePoint();
    keepResumePoint();
}

void PlayerWorker::takeVolume(const OrvoValue& stored) {
    m_transport.applyVolume(stored.containsI32_() ? qBound(0, stored.i32(), AudioOutput::MaxVolume)
                                                  : DefaultVolume);
}

void PlayerWorker::keepVolume() {
    m_volumeTimer.stop();
    keep(OrvoPlayerSettingsVolumePath(), m_transport.volume(), "the volume");
}

void PlayerWorker::takeResumePoint(const OrvoValue& stored) {
    m_transport.setResumePoint(resumePoint(stored.string()));
}

void PlayerWorker::keepResumePoint() {
    CMRootWorker* root = CMRootWorker::instance();
    const QString text = resumePointText(m_transport.resumePoint());
    if (root && OrvoValue(root->getValue(OrvoPlayerSettingsResumePointPath())).string() != text)
        keep(OrvoPlayerSettingsResumePointPath(), text, "where playback stopped");
}

void PlayerWorker::keep(const CMPath& setting, const QVariant& value, const char* what) {
    const CMVoidReply reply;
    reply.onError([what](const CMError& error) {
        LOG4CPLUS_ERROR(playerLog(), what << " is not kept: " << error.message().toString());
    });
    if (CMRootWorker* root = CMRootWorker::instance())
        root->setValue(setting, value, reply);
}

QVariant PlayerWorker::getValue(const CMPath& path) {
    const ValueRow* row = valueRow(path);
    return row ? row->read(m_transport).toVariant() : CMNodesWorker::getValue(path);
}

void PlayerWorker::setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) {
    const ValueRow* row = valueRow(path);
    if (!row || !row->write) {
        CMNodesWorker::setValue(path, value, reply);
        return;
    }
    OrvoHash args;
    args.setAttribute(row->argument, bare(value));
    const CMReply<QVariant> done;
    done.onSuccess([reply] { reply.setFinished(); });
    done.onError([reply](const CMError& error) { reply.setError(error); });
    (m_transport.*row->write)(CMSetDataRequest(path, args.toVariant(), done));
}

void PlayerWorker::setDataRequest(const CMSetDataRequest& request) {
    const QString base = request.path().base();
    for (const CommandRow& row : commandRows()) {
        if (row.path.base() == base) {
            (m_transport.*row.call)(request);
            return;
        }
    }
    CMNodesWorker::setDataRequest(request);
}

void PlayerWorker::publishSoon() {
    if (m_publishing)
        return;
    // From the event loop: a change may be made in the middle of a play logic's decision, and
    // several of them are one to those who watch.
    m_publishing = true;
    QMetaObject::invokeMethod(
        this, [this] { publish(); }, Qt::QueuedConnection);
}

// When it is set and when it is over; in between, those who watch count down themselves.
void PlayerWorker::publishSleepTimer() {
    const ValueRow* row = valueRow(OrvoPlayerSleepTimerPath());
    const OrvoValue newValue = row->read(m_transport);
    const OrvoValue oldValue = std::exchange(m_published[row->path.base()], newValue);
    subscribe()->valueChanged(row->path, newValue, oldValue);
}

void PlayerWorker::publish() {
    m_publishing = false;
    for (const ValueRow& row : valueRows()) {
        if (row.publishedByItself)
            continue;
        const OrvoValue newValue = row.read(m_transport);
        OrvoValue& known = m_published[row.path.base()];
        if (newValue == known)
            continue;
        const OrvoValue oldValue = known;
        known = newValue;
        subscribe()->valueChanged(row.path, newValue, oldValue);
        if (row.path == OrvoPlayerVolumePath())
            m_volumeTimer.start(KeepVolumeAfterMs);
        if (row.path == OrvoPlayerResumePointPath())
            keepResumePoint();
    }
}
