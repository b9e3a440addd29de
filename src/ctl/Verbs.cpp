#include "Verbs.h"

#include "ClientFailure.h"

const QVector<Verb>& Verbs::all() {
    static const QStringList none;
    static const QVector<Verb> table = {
        {"playlists", "", "all playlists, the play queue first", 0, 0, none, none,
         PlaylistVerbs::list},
        {"create", "NAME", "a new playlist; prints its id", 1, 1, none, none,
         PlaylistVerbs::create},
        {"rename", "PLAYLIST NAME", "another name for a playlist", 2, 2, none, none,
         PlaylistVerbs::rename},
        {"delete", "PLAYLIST", "deletes a playlist", 1, 1, none, none, PlaylistVerbs::remove},
        {"show",
         "PLAYLIST [--from POS] [--to POS]",
         "the tracks of a playlist",
         1,
         1,
         {"from", "to"},
         none,
         PlaylistVerbs::show},
        {"add",
         "PLAYLIST FILE|FOLDER|PATH... [--now|--next|--append]",
         "adds tracks; a folder adds all its tracks",
         2,
         Verb::Any,
         none,
         {"now", "next", "append"},
         AddVerb::add},
        {"remove", "PLAYLIST POS...", "removes tracks; POS is 3 or 3-7", 2, Verb::Any, none, none,
         PlaylistVerbs::removeItems},
        {"move",
         "PLAYLIST POS... --to POS",
         "moves tracks",
         2,
         Verb::Any,
         {"to"},
         none,
         PlaylistVerbs::moveItems},
        {"clear", "PLAYLIST", "removes all tracks", 1, 1, none, none, PlaylistVerbs::clear},
        {"merge", "SOURCE TARGET", "moves all tracks of SOURCE to TARGET and deletes SOURCE", 2, 2,
         none, none, PlaylistVerbs::merge},
        {"sort",
         "PLAYLIST --by title|artist|album|duration [--reverse]",
         "brings the tracks into another order",
         1,
         1,
         {"by"},
         {"reverse"},
         OrderVerbs::sort},
        {"dedupe", "PLAYLIST",
         "removes tracks whose file or address is there already; the first stays", 1, 1, none, none,
         OrderVerbs::dedupe},
        {"shuffle", "PLAYLIST on|off", "plays in random order or not", 2, 2, none, none,
         PlaylistVerbs::shuffle},
        {"repeat", "PLAYLIST on|off", "begins again at the end or not", 2, 2, none, none,
         PlaylistVerbs::repeat},
        {"play",
         "PLAYLIST [POS | --from POS]",
         "plays a playlist, from this track on or from where it was left",
         1,
         2,
         {"from"},
         none,
         PlayerVerbs::play},
        {"pause", "", "pauses playback", 0, 0, none, none, PlayerVerbs::pause},
        {"resume", "", "goes on playing", 0, 0, none, none, PlayerVerbs::resume},
        {"stop", "", "stops playback", 0, 0, none, none, PlayerVerbs::stop},
        {"next", "", "plays the next track", 0, 0, none, none, PlayerVerbs::next},
        {"previous", "", "plays the track before", 0, 0, none, none, PlayerVerbs::previous},
        {"seek", "TIME", "goes on at TIME in the track: 95, 1:35 or 0:01:35", 1, 1, none, none,
         PlayerVerbs::seek},
        {"mode", "[MODE]",
         "the play mode: normal, shuffle, repeatOne, shuffleRepeatOne, repeatAll, "
         "shuffleRepeatAll",
         0, 1, none, none, PlayerVerbs::mode},
        {"volume", "[0-100]", "the volume", 0, 1, none, none, PlayerVerbs::volume},
        {"status",
         "[--follow]",
         "what plays, and what comes next",
         0,
         0,
         none,
         {"follow"},
         PlayerVerbs::status},
        {"next-up",
         "[--count N]",
         "the tracks that will be heard next, in that order",
         0,
         0,
         {"count"},
         none,
         NextUpVerb::nextUp},
        {"collections", "", "all collections", 0, 0, none, none, CollectionVerbs::list},
        {"collection create", "NAME", "a new collection; prints its id", 1, 1, none, none,
         CollectionVerbs::create},
        {"collection delete", "COLLECTION", "deletes a collection, not its playlists", 1, 1, none,
         none, CollectionVerbs::remove},
        {"collection add", "COLLECTION PLAYLIST", "adds a playlist", 2, 2, none, none,
         CollectionVerbs::add},
        {"collection remove", "COLLECTION PLAYLIST", "takes a playlist out", 2, 2, none, none,
         CollectionVerbs::removeItem},
        {"collection show", "COLLECTION", "the playlists of a collection", 1, 1, none, none,
         CollectionVerbs::show},
        {"browse", "[PATH]", "everything, in this terminal; ? shows the keys", 0, 1, none, none,
         BrowseVerb::browse},
        {"paths", "", "the names of the device's paths", 0, 0, none, none, BasicVerbs::paths},
        {"rows",
         "PATH [--from N] [--to N] [--roles A,B]",
         "the rows of any list, counted from 0",
         1,
         1,
         {"from", "to", "roles"},
         none,
         BasicVerbs::rows},
        {"set", "PATH JSON", "sends any command", 2, 2, none, none, BasicVerbs::set},
        {"value", "PATH [JSON]", "reads or sets a value", 1, 2, none, none, BasicVerbs::value},
        {"watch",
         "[--count N]",
         "what changes, as it changes",
         0,
         0,
         {"count"},
         none,
         WatchVerb::watch},
        {"check", "FILE", "looks for damage in a device's file of playlists", 1, 1, none, none,
         StoreVerbs::check},
        {"backup",
         "FILE [TARGET] [--force]",
         "copies a device's file of playlists, also while the device runs",
         1,
         2,
         none,
         {"force"},
         StoreVerbs::backup},
    };
    return table;
}

const Verb& Verbs::take(QStringList* words) {
    for (const Verb& verb : all()) {
        const QStringList names = QString::fromLatin1(verb.words).split(QLatin1Char(' '));
        if (words->mid(0, names.size()) != names)
            continue;
        *words = words->mid(names.size());
        return verb;
    }
    throw ClientFailure::usage(
        words->isEmpty()
            ? QStringLiteral("a verb is missing")
            : QStringLiteral("unknown verb \"%1\"").arg(words->mid(0, 2).join(QLatin1Char(' '))));
}

void Verbs::checkCount(const Verb& verb, const Arguments& arguments) {
    const int count = arguments.positional().size();
    if (count < verb.least || (verb.most != Verb::Any && count > verb.most))
        throw ClientFailure::usage(QStringLiteral("usage: orvoctl %1 %2")
                                       .arg(QLatin1String(verb.words), QLatin1String(verb.usage))
                                       .trimmed());
}

QString Verbs::help() {
    QString text =
        QStringLiteral("usage: orvoctl [--url URL] [--token-file FILE] [--json] VERB ...\n\n");
    for (const Verb& verb : all()) {
        const QString left = QStringLiteral("  %1 %2")
                                 .arg(QLatin1String(verb.words), QLatin1String(verb.usage))
                                 .trimmed();
        text += QStringLiteral("  %1\n        %2\n").arg(left, QLatin1String(verb.help));
    }
    return text +
           QStringLiteral(
               "\nA playlist or collection is its name or #ID; the play queue is \"queue\" or #0.\n"
               "Positions count from 1. Exit status: 0, 1 (refused, no device, findings), 2 (usage, unreadable file).\n");
}

void VerbContext::run(const QString& function, const QJsonObject& record,
                      const QString& done) const {
    const QJsonValue result = device.command(function, record);
    if (output.isJson())
        output.json(QJsonObject{{QStringLiteral("result"), result}});
    else
        output.done(done);
}
