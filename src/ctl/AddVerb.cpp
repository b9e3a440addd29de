#include <cstdio>

#include <QFile>

#include "Awaited.h"
#include "ClientFailure.h"
#include "MusicSources.h"
#include "ProgressBar.h"
#include "Verbs.h"

namespace {

struct ModeRow {
    const char* flag;
    AddFolderJob::Mode mode;
};

constexpr ModeRow Modes[] = {
    {"append", AddFolderJob::Append}, {"now", AddFolderJob::Now}, {"next", AddFolderJob::Next}};

AddFolderJob::Mode chosenMode(const Arguments& arguments) {
    const ModeRow* chosen = nullptr;
    for (const ModeRow& row : Modes) {
        if (!arguments.has(QString::fromLatin1(row.flag)))
            continue;
        if (chosen)
            throw ClientFailure::usage(QStringLiteral("only one of --now, --next and --append"));
        chosen = &row;
    }
    return chosen ? chosen->mode : AddFolderJob::Append;
}

// Names of files may hold anything but a zero byte, which is what separates them where there is one
// (find -print0); a line each otherwise.
QStringList readNames() {
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = input.readAll();
    QStringList names;
    for (const QByteArray& name : bytes.split(bytes.contains('\0') ? '\0' : '\n')) {
        if (!name.isEmpty())
            names.append(QFile::decodeName(name));
    }
    return names;
}

// "-" stands for the names on standard input.
QStringList namesOf(const QStringList& words) {
    const QString input = QStringLiteral("-");
    if (words.count(input) > 1)
        throw ClientFailure::usage(QStringLiteral("standard input is read only once"));
    QStringList names;
    for (const QString& word : words)
        names += word == input ? readNames() : QStringList(word);
    return names;
}

struct StepEnd {
    QString error;
    int status = HttpOk;
};

// Runs the event loop until a step of the job is over.
StepEnd await(AddFolderJob& job, void (AddFolderJob::*step)()) {
    const QObject whileWaiting;
    return awaited<StepEnd>([&](const auto& done) {
        QObject::connect(&job, &AddFolderJob::looked, &whileWaiting, [done] { done({}); });
        QObject::connect(&job, &AddFolderJob::finished, &whileWaiting,
                         [done](const QString& error, int status) {
                             done({error, status});
                         });
        (job.*step)();
    });
}

void findTracks(VerbContext& context, AddFolderJob& job) {
    ProgressBar bar(QStringLiteral("looking for tracks:"));
    QObject::connect(&job, &AddFolderJob::found, [&bar](int tracks) { bar.show(tracks, 0); });
    const StepEnd end = await(job, &AddFolderJob::look);
    job.disconnect();
    context.device.check(end.error, end.status);
    if (job.tracks().isEmpty())
        throw ClientFailure::refused(QStringLiteral("there are no tracks in it"));
}

void addTracks(VerbContext& context, AddFolderJob& job) {
    ProgressBar bar(QStringLiteral("adding"));
    QObject::connect(&job, &AddFolderJob::adding,
                     [&bar](int done, int total) { bar.show(done, total); });
    const StepEnd end = await(job, &AddFolderJob::send);
    job.disconnect();
    context.device.check(end.error, end.status);
}

} // namespace

void AddVerb::add(VerbContext& context) {
    const AddFolderJob::Mode mode = chosenMode(context.arguments);
    const Named playlist = context.playlist();
    MusicSources music(&context.device);
    QVector<AddFolderJob::Source> sources;
    for (const QString& word : namesOf(context.arguments.positional().mid(1)))
        sources.append(music.of(word));
    addSources(context, sources, playlist, mode);
}

void AddVerb::addSources(VerbContext& context, const QVector<AddFolderJob::Source>& sources,
                         const Named& playlist, AddFolderJob::Mode mode) {
    AddFolderJob job(
        context.device.api(), sources,
        {context.device.path(QStringLiteral("OrvoPlayListPlAddItemsPath")), playlist.id, {}}, mode);
    findTracks(context, job);
    const int total = job.tracks().size();
    const QString list = context.lists.itemsPath(playlist);
    // A list of an id that is not there is empty; the command itself says so.
    const int before = playlist.name.isEmpty() ? 0 : context.device.rowsCount(list);
    const auto added = [&] { return context.device.rowsCount(list) - before; };
    try {
        addTracks(context, job);
    } catch (const ClientFailure& failure) {
        const int count = playlist.name.isEmpty() ? 0 : added();
        if (count == 0)
            throw;
        throw ClientFailure::refused(QStringLiteral("only %1 of %2 tracks added: %3")
                                         .arg(count)
                                         .arg(total)
                                         .arg(failure.message));
    }
    const int count = added();
    if (context.output.isJson())
        context.output.json(
            QJsonObject{{QStringLiteral("added"), count}, {QStringLiteral("requested"), total}});
    else
        context.output.done(QStringLiteral("added %1 of %2 tracks to %3")
                                .arg(count)
                                .arg(total)
                                .arg(playlist.label()));
}
