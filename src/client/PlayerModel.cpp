#include "PlayerModel.h"

#include <memory>

#include <QPointer>

#include "PathText.h"

namespace {

constexpr int MaxVolume = 100;
constexpr int MsPerSecond = 1000;
constexpr int PlayContainer = 1; // the type of a play request for a list

QJsonObject child(const QJsonObject& object, const char* name) {
    return object.value(QLatin1String(name)).toObject();
}

} // namespace

const QVector<PlayerModel::Value>& PlayerModel::values() {
    static const QVector<Value> table = {
        {"OrvoPlayerStatePath", &PlayerModel::takeState},
        {"OrvoPlayerDataPath", &PlayerModel::takeData},
        {"OrvoPlayerPlayModePath", &PlayerModel::takeMode},
        {"OrvoPlayerPositionPath", &PlayerModel::takePosition},
        {"OrvoPlayerDurationPath", &PlayerModel::takeDuration},
        {"OrvoPlayerVolumePath", &PlayerModel::takeVolume},
        {"OrvoPlayerNextMediaPath", &PlayerModel::takeNext},
    };
    return table;
}

PlayerModel::PlayerModel(const QJsonObject& paths, AsyncApi* api) : m_paths(paths), m_api(api) {
    m_clock.start();
}

QString PlayerModel::pathOf(const char* function) const {
    return m_paths.value(QLatin1String(function)).toString();
}

QStringList PlayerModel::watched() const {
    const QString path = pathOf("OrvoPlayerPositionPath");
    return path.isEmpty() ? QStringList() : QStringList(path);
}

QStringList PlayerModel::functions() {
    QStringList names;
    for (const Value& value : values())
        names.append(QLatin1String(value.function));
    return names;
}

void PlayerModel::refresh(bool isPresent, const AsyncApi::Answered& done) {
    m_isPresent = isPresent;
    if (isPresent) {
        // By the place in the table, so that the first refusal does not depend on who is faster.
        const auto answers = std::make_shared<QMap<int, ApiAnswer>>();
        for (int i = 0; i < values().size(); ++i) {
            m_api->value(
                pathOf(values().at(i).function),
                [self = QPointer<PlayerModel>(this), answers, done, i](const ApiAnswer& answer) {
                    if (self)
                        self->take(i, answer, *answers, done);
                });
        }
    }
    Q_EMIT changed();
}

void PlayerModel::take(int index, const ApiAnswer& answer, QMap<int, ApiAnswer>& answers,
                       const AsyncApi::Answered& done) {
    if (answer.error.isEmpty()) {
        (this->*values().at(index).take)(answer.body.value(QLatin1String("value")).toObject());
        Q_EMIT changed();
    }
    answers.insert(index, answer);
    if (!done || answers.size() < values().size())
        return;
    for (const ApiAnswer& one : qAsConst(answers)) {
        if (!one.error.isEmpty()) {
            done(one);
            return;
        }
    }
    done(answer);
}

void PlayerModel::apply(const QString& path, const QJsonObject& value) {
    for (const Value& known : values()) {
        if (!PathText::isSamePlace(path, pathOf(known.function)))
            continue;
        const QString before = error();
        (this->*known.take)(value);
        Q_EMIT changed();
        if (!error().isEmpty() && error() != before)
            Q_EMIT failed(error());
    }
}

void PlayerModel::takeState(const QJsonObject& value) {
    // The clock runs between two positions, so it is set when it starts or stops, too.
    m_position = position();
    m_clock.restart();
    m_state = value.value(QLatin1String("string")).toString(QStringLiteral("stopped"));
}

void PlayerModel::takeData(const QJsonObject& value) {
    m_data = value;
}

void PlayerModel::takeMode(const QJsonObject& value) {
    m_mode = value.value(QLatin1String("string")).toString();
}

void PlayerModel::takePosition(const QJsonObject& value) {
    m_position = qint64(value.value(QLatin1String("i64")).toDouble());
    m_clock.restart();
}

void PlayerModel::takeDuration(const QJsonObject& value) {
    m_duration = qint64(value.value(QLatin1String("i64")).toDouble());
}

void PlayerModel::takeVolume(const QJsonObject& value) {
    m_volume = value.value(QLatin1String("i32")).toInt(MaxVolume);
}

void PlayerModel::takeNext(const QJsonObject& value) {
    m_nextTitle = BrowseRow(value).title();
}

BrowseRow PlayerModel::track() const {
    const BrowseRow row(child(m_data, "trackRoles"));
    return isActive() && !row.path().isEmpty() ? row : BrowseRow();
}

QJsonObject PlayerModel::container() const {
    return child(m_data, "mediaRoles");
}

qint64 PlayerModel::position() const {
    const qint64 at = m_position + (isPlaying() ? m_clock.elapsed() : 0);
    return m_duration > 0 ? qMin(at, m_duration) : at;
}

QString PlayerModel::error() const {
    for (const char* name : {"error", "streamerError"}) {
        const QJsonObject error = child(m_data, name);
        if (!error.isEmpty())
            return error.value(QLatin1String("message"))
                .toString(QStringLiteral("This cannot be played."));
    }
    return {};
}

bool PlayerModel::isCurrent(const BrowseRow& row) const {
    const BrowseRow playing = track();
    if (!playing.isThere() || row.path().isEmpty())
        return false;
    if (row.type() == BrowseRow::Audio)
        return row.path() == playing.path();
    return row.opens() && row.path() == BrowseRow(container()).path();
}

bool PlayerModel::allows(const char* control) const {
    return isActive() && child(m_data, "controls").value(QLatin1String(control)).toBool(true);
}

void PlayerModel::send(const char* function, const QJsonObject& value) {
    m_api->post(pathOf(function), value,
                [self = QPointer<PlayerModel>(this)](const ApiAnswer& answer) {
                    if (self && !answer.error.isEmpty())
                        Q_EMIT self->failed(answer.error);
                });
}

void PlayerModel::playContainer(const QJsonObject& container, const BrowseRow& track, int index) {
    send("OrvoPlayerPlayContainerPath", {{QStringLiteral("mediaRoles"), container},
                                         {QStringLiteral("trackRoles"), track.roles()},
                                         {QStringLiteral("index"), index},
                                         {QStringLiteral("type"), PlayContainer}});
}

void PlayerModel::toggle() {
    if (!isActive())
        return;
    if (!isPlaying())
        send("OrvoPlayerResumePath");
    else if (allows("pause"))
        send("OrvoPlayerPausePath");
}

void PlayerModel::next() {
    if (allows("next"))
        send("OrvoPlayerNextPath");
}

void PlayerModel::previous() {
    if (allows("previous"))
        send("OrvoPlayerPreviousPath");
}

// While a step is under way, the next one goes on from where that one leads.
void PlayerModel::changeVolume(int by) {
    if (!m_isPresent)
        return;
    const qint64 from = m_volumeSetting.isUnderWay ? m_volumeSetting.latest : m_volume;
    m_volume = int(qBound<qint64>(0, from + by, MaxVolume));
    set(&m_volumeSetting, m_volume);
}

void PlayerModel::seekBy(int seconds) {
    if (!allows("seekTime"))
        return;
    const qint64 from = m_seekSetting.isUnderWay ? m_seekSetting.latest : position();
    m_position = qMax<qint64>(0, from + qint64(seconds) * MsPerSecond);
    m_clock.restart();
    set(&m_seekSetting, position());
}

void PlayerModel::set(Setting* setting, qint64 number) {
    setting->latest = number;
    setting->isDue = true;
    Q_EMIT changed();
    if (!setting->isUnderWay)
        sendLatest(setting);
}

void PlayerModel::sendLatest(Setting* setting) {
    setting->isUnderWay = true;
    setting->isDue = false;
    m_api->post(pathOf(setting->function),
                QJsonObject{{QLatin1String(setting->key), setting->latest}},
                [self = QPointer<PlayerModel>(this), setting](const ApiAnswer& answer) {
                    if (!self)
                        return;
                    setting->isUnderWay = false;
                    if (!answer.error.isEmpty()) {
                        setting->isDue = false;
                        Q_EMIT self->failed(answer.error);
                        self->refresh(self->m_isPresent); // what was shown already is not so
                    } else if (setting->isDue) {
                        self->sendLatest(setting);
                    }
                });
}
