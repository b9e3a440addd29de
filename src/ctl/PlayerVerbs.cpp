#include "ClientFailure.h"
#include "ClockText.h"
#include "PlayerModel.h"
#include "PlayerStatus.h"
#include "Positions.h"
#include "Verbs.h"

namespace {

constexpr int MaxVolume = 100;
constexpr int PlayContainer = 1; // the type of a play request for a list

// A player's command without arguments.
void send(VerbContext& context, const char* function, const char* done) {
    context.run(QString::fromLatin1(function), {}, QString::fromLatin1(done));
}

const QStringList TrackRoles = {QStringLiteral("title"), QStringLiteral("type"),
                                QStringLiteral("path"),  QStringLiteral("id"),
                                QStringLiteral("value"), QStringLiteral("mediaData")};

// Where in a track to begin, and what to say besides.
struct TrackStart {
    int milliseconds = 0;
    QString hint;
};

void playFrom(VerbContext& context, const Named& playlist, int index, const TrackStart& start) {
    const QString path = context.lists.itemsPath(playlist);
    const RowsAnswer rows = context.device.rows(path, TrackRoles, index, index);
    if (rows.rows.isEmpty())
        throw ClientFailure::refused(
            QStringLiteral("there is no track %1 in %2").arg(index + 1).arg(playlist.label()));
    const QJsonObject container = {
        {QStringLiteral("path"), path},
        {QStringLiteral("type"), 1},
        {QStringLiteral("containerPlayable"), true},
        {QStringLiteral("mediaData"), rows.roles.value(QStringLiteral("mediaData"))}};
    context.run(QStringLiteral("OrvoPlayerPlayContainerPath"),
                {{QStringLiteral("mediaRoles"), container},
                 {QStringLiteral("trackRoles"), rows.rows.first()},
                 {QStringLiteral("index"), index},
                 {QStringLiteral("type"), PlayContainer},
                 {QStringLiteral("startPosition"), start.milliseconds}},
                QStringLiteral("playing %1 from track %2").arg(playlist.label()).arg(index + 1) +
                    start.hint);
}

void playFromFirst(VerbContext& context, const Named& playlist) {
    context.run(QStringLiteral("OrvoPlayListPlPlayPath"), {{QStringLiteral("plid"), playlist.id}},
                QStringLiteral("playing %1 from track 1").arg(playlist.label()));
}

// The milliseconds at which playback was stopped, if that was in this track of the list.
std::optional<int> stoppedAt(VerbContext& context, const QString& listPath, int index) {
    const QString function = QStringLiteral("OrvoPlayerResumePointPath");
    if (!context.device.paths().contains(function))
        return std::nullopt;
    const QJsonObject point = context.device.value(context.device.path(function)).toObject();
    if (point.value(QStringLiteral("mediaPath")).toString() != listPath)
        return std::nullopt;
    const RowsAnswer track = context.device.rows(listPath, {QStringLiteral("path")}, index, index);
    const QString trackPath = point.value(QStringLiteral("trackPath")).toString();
    if (track.rows.isEmpty() ||
        track.rows.first().value(QStringLiteral("path")).toString() != trackPath)
        return std::nullopt;
    return point.value(QStringLiteral("position")).toInt();
}

// Where the list was left. The device forgets that one was played to its end when it restarts:
// then its last track is the last played one, and playback was not stopped in it.
void goOn(VerbContext& context, const Named& playlist) {
    const QString path = context.lists.itemsPath(playlist);
    const auto list = context.device.tryRows(path, {QStringLiteral("path")}, 0, 0);
    const int index = list ? list->resumeIndex : -1;
    if (index <= 0) {
        playFromFirst(context, playlist);
        return;
    }
    const std::optional<int> stopped = stoppedAt(context, path, index);
    if (index == list->count - 1 && !stopped)
        playFromFirst(context, playlist);
    else
        playFrom(context, playlist, index,
                 {stopped.value_or(0), QStringLiteral("; --from 1 to begin")});
}

// "+5" and "-5" are steps, "5" is a value.
struct Step {
    int direction = 0;
    QString amount;
};

Step stepOf(const QString& word) {
    const int direction = word.startsWith(QLatin1Char('+'))   ? 1
                          : word.startsWith(QLatin1Char('-')) ? -1
                                                              : 0;
    const QString amount = direction == 0 ? word : word.mid(1);
    // A second sign is none of ours, and a number would take it.
    const bool isSigned =
        amount.startsWith(QLatin1Char('+')) || amount.startsWith(QLatin1Char('-'));
    return {direction, direction != 0 && isSigned ? QString() : amount};
}

} // namespace

void PlayerVerbs::play(VerbContext& context) {
    const QString from = QStringLiteral("from");
    const Arguments& arguments = context.arguments;
    QStringList positions = arguments.positional().mid(1);
    if (arguments.has(from))
        positions.append(arguments.value(from));
    if (positions.size() > 1)
        throw ClientFailure::usage(QStringLiteral("a track behind --from or without it, not both"));
    const int index = positions.isEmpty() ? -1 : Positions::parseOne(positions.first());
    const Named playlist = context.playlist();
    if (index < 0)
        goOn(context, playlist);
    else
        playFrom(context, playlist, index, {});
}

void PlayerVerbs::pause(VerbContext& context) {
    send(context, "OrvoPlayerPausePath", "paused");
}

void PlayerVerbs::resume(VerbContext& context) {
    send(context, "OrvoPlayerResumePath", "going on");
}

void PlayerVerbs::toggle(VerbContext& context) {
    const QString state = PlayerStatus::read(context.device).state;
    if (state == QLatin1String("playing") || state == QLatin1String("opening"))
        pause(context);
    else
        resume(context);
}

void PlayerVerbs::stop(VerbContext& context) {
    send(context, "OrvoPlayerStopPath", "stopped");
}

void PlayerVerbs::next(VerbContext& context) {
    send(context, "OrvoPlayerNextPath", "next track");
}

void PlayerVerbs::previous(VerbContext& context) {
    send(context, "OrvoPlayerPreviousPath", "track before");
}

void PlayerVerbs::seek(VerbContext& context) {
    const Step step = stepOf(context.arguments.at(0));
    const std::optional<int> time = ClockText::toMilliseconds(step.amount);
    if (!time)
        throw ClientFailure::usage(
            QStringLiteral("a time is 95, 1:35 or 0:01:35, with + or - so far ahead or back, not "
                           "\"%1\"")
                .arg(context.arguments.at(0)));
    int at = *time;
    if (step.direction != 0) {
        const PlayerStatus now = PlayerStatus::read(context.device);
        const qint64 wanted = qMax<qint64>(0, now.position + qint64(step.direction) * *time);
        at = int(now.duration > 0 ? qMin(wanted, now.duration) : wanted);
    }
    context.run(QStringLiteral("OrvoPlayerSeekTimePath"), {{QStringLiteral("time"), at}},
                QStringLiteral("at %1").arg(ClockText::ofTime(at)));
}

void PlayerVerbs::mode(VerbContext& context) {
    if (context.arguments.positional().isEmpty()) {
        context.output.line(PlayerStatus::read(context.device).mode);
        return;
    }
    const QString mode = context.arguments.at(0);
    context.run(QStringLiteral("OrvoPlayerSetPlayModePath"), {{QStringLiteral("playMode"), mode}},
                QStringLiteral("play mode: %1").arg(mode));
}

void PlayerVerbs::volume(VerbContext& context) {
    if (context.arguments.positional().isEmpty()) {
        context.output.line(QString::number(PlayerStatus::read(context.device).volume));
        return;
    }
    const Step step = stepOf(context.arguments.at(0));
    int volume = Arguments::toNumber(step.amount, 0, QStringLiteral("the volume"));
    if (step.direction != 0)
        volume = int(qBound<qint64>(
            0, PlayerStatus::read(context.device).volume + qint64(step.direction) * volume,
            MaxVolume));
    context.run(QStringLiteral("OrvoPlayerSetVolumePath"), {{QStringLiteral("volume"), volume}},
                QStringLiteral("volume: %1").arg(volume));
}

void PlayerVerbs::status(VerbContext& context) {
    const auto show = [&context] {
        const PlayerStatus status = PlayerStatus::read(context.device);
        if (context.output.isJson())
            context.output.json(status.json());
        else
            context.output.text(status.text());
    };
    show();
    if (!context.arguments.has(QStringLiteral("follow")))
        return;
    QStringList paths;
    for (const QString& function : PlayerModel::functions())
        paths.append(context.device.path(function));
    context.device.follow(paths, [&](const DeviceEvent& event) {
        const QString path = event.object().value(QStringLiteral("path")).toString();
        if (event.isResync() || paths.contains(path))
            show();
        return true;
    });
}
