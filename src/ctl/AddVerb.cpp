#include <QJsonArray>

#include "ClientFailure.h"
#include "ProgressBar.h"
#include "TrackFinder.h"
#include "Verbs.h"

namespace {

// Appended tracks go in parts, so that the progress shows and each request stays short.
constexpr int BatchSize = 500;

struct ModeRow {
    const char* flag;
    int mode;
    // Where a part goes depends on what plays, so parts would come out in another order: one
    // request takes all.
    bool atOnce;
};

constexpr ModeRow Modes[] = {{"append", 2, false}, {"now", 0, true}, {"next", 1, true}};

const ModeRow& chosenMode(const Arguments& arguments) {
    const ModeRow* chosen = nullptr;
    for (const ModeRow& row : Modes) {
        if (!arguments.has(QString::fromLatin1(row.flag)))
            continue;
        if (chosen)
            throw ClientFailure::usage(QStringLiteral("only one of --now, --next and --append"));
        chosen = &row;
    }
    return chosen ? *chosen : Modes[0];
}

QStringList findTracks(VerbContext& context) {
    ProgressBar bar(QStringLiteral("looking for tracks:"));
    TrackFinder finder(&context.device, [&bar](int found) { bar.show(found, 0); });
    const QStringList tracks = finder.find(context.arguments.positional().mid(1));
    if (tracks.isEmpty())
        throw ClientFailure::refused(QStringLiteral("there are no tracks in it"));
    return tracks;
}

void addTracks(VerbContext& context, const Named& playlist, const ModeRow& mode,
               const QStringList& tracks) {
    ProgressBar bar(QStringLiteral("adding"));
    const int batch = mode.atOnce ? tracks.size() : BatchSize;
    for (int start = 0; start < tracks.size(); start += batch) {
        bar.show(start, tracks.size());
        context.device.command(
            QStringLiteral("OrvoPlayListPlAddItemsPath"),
            {{QStringLiteral("plid"), playlist.id},
             {QStringLiteral("items"), QJsonArray::fromStringList(tracks.mid(start, batch))},
             {QStringLiteral("mode"), mode.mode}});
    }
}

} // namespace

void AddVerb::add(VerbContext& context) {
    const ModeRow& mode = chosenMode(context.arguments);
    const Named playlist = context.playlist();
    const QStringList tracks = findTracks(context);
    const QString list = context.names.itemsPath(playlist);
    // A list of an id that is not there is empty; the command itself says so.
    const int before = playlist.name.isEmpty() ? 0 : context.device.rowsCount(list);
    const auto added = [&] { return context.device.rowsCount(list) - before; };
    try {
        addTracks(context, playlist, mode, tracks);
    } catch (const ClientFailure& failure) {
        const int count = playlist.name.isEmpty() ? 0 : added();
        if (count == 0)
            throw;
        throw ClientFailure::refused(QStringLiteral("only %1 of %2 tracks added: %3")
                                         .arg(count)
                                         .arg(tracks.size())
                                         .arg(failure.message));
    }
    const int count = added();
    if (context.output.isJson())
        context.output.json(QJsonObject{{QStringLiteral("added"), count},
                                        {QStringLiteral("requested"), tracks.size()}});
    else
        context.output.done(QStringLiteral("added %1 of %2 tracks to %3")
                                .arg(count)
                                .arg(tracks.size())
                                .arg(playlist.label()));
}
