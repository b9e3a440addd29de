#pragma once

#include <limits>

#include <QStringList>
#include <QVector>

#include "AddFolderJob.h"
#include "Arguments.h"
#include "ClientFailure.h"
#include "Lists.h"
#include "Output.h"

// What a verb works with: made by main for the one verb of this run.
struct VerbContext {
    Arguments arguments;
    Device& device;
    Lists& lists;
    Output& output;

    Named playlist(int index = 0) const { return lists.playlist(arguments.at(index)); }
    Named collection(int index = 0) const { return lists.collection(arguments.at(index)); }
    // Sends a command and says what was done; with --json the result itself is printed.
    void run(const QString& function, const QJsonObject& record, const QString& done) const;
    // Creates what the first argument names, and prints its number.
    void create(const QString& function) const;
};

// How many positional arguments a verb takes.
struct ArgumentCount {
    int least;
    int most;

    bool allows(int count) const { return count >= least && count <= most; }
};
constexpr ArgumentCount exactly(int count) {
    return {count, count};
}
constexpr ArgumentCount between(int least, int most) {
    return {least, most};
}
constexpr ArgumentCount atLeast(int least) {
    return {least, std::numeric_limits<int>::max()};
}

// The options of a verb, without their dashes.
struct VerbOptions {
    QStringList valued = {}; // with a value behind them
    QStringList flags = {};
};

// One verb: its words, what follows them, and who carries it out.
struct Verb {
    const char* words; // one or two
    const char* usage; // what follows, as shown in the help
    const char* help;
    const char* example; // behind "orvoctl"
    ArgumentCount count;
    void (*run)(VerbContext& context);
    VerbOptions options = {};
};

namespace Verbs {

const QVector<Verb>& all();
QStringList wordsOf(const Verb& verb);
// Those whose first words are these: {"collection"} gives all verbs of collections.
QVector<Verb> beginningWith(const QStringList& words);
// What completion scripts call, which is no verb for people.
const Verb& completionLine();
// The verb that a command line begins with, null when there is none.
const Verb* find(const QStringList& words);
// The same; its words are taken off `words`. A usage failure when there is none.
const Verb& take(QStringList* words);
// What to say of words that name no verb, with the one that was likely meant.
ClientFailure unknown(const QStringList& words);
// A usage failure when the number of arguments is not the verb's.
void checkCount(const Verb& verb, const Arguments& arguments);

} // namespace Verbs

namespace BasicVerbs {
void paths(VerbContext& context);
void rows(VerbContext& context);
void set(VerbContext& context);
void value(VerbContext& context);
void rescan(VerbContext& context);
} // namespace BasicVerbs

namespace PlaylistVerbs {
void list(VerbContext& context);
void create(VerbContext& context);
void rename(VerbContext& context);
void remove(VerbContext& context);
void show(VerbContext& context);
void removeItems(VerbContext& context);
void moveItems(VerbContext& context);
void clear(VerbContext& context);
void merge(VerbContext& context);
void shuffle(VerbContext& context);
void repeat(VerbContext& context);
} // namespace PlaylistVerbs

namespace OrderVerbs {
void sort(VerbContext& context);
void dedupe(VerbContext& context);
} // namespace OrderVerbs

namespace PlayerVerbs {
void play(VerbContext& context);
void pause(VerbContext& context);
void resume(VerbContext& context);
void toggle(VerbContext& context);
void stop(VerbContext& context);
void next(VerbContext& context);
void previous(VerbContext& context);
void seek(VerbContext& context);
void mode(VerbContext& context);
void volume(VerbContext& context);
void status(VerbContext& context);
} // namespace PlayerVerbs

namespace NextUpVerb {
void nextUp(VerbContext& context);
}

namespace CollectionVerbs {
void list(VerbContext& context);
void create(VerbContext& context);
void remove(VerbContext& context);
void add(VerbContext& context);
void removeItem(VerbContext& context);
void show(VerbContext& context);
} // namespace CollectionVerbs

namespace AddVerb {
void add(VerbContext& context);
// Adds tracks, and all tracks of lists, and says how many.
void addSources(VerbContext& context, const QVector<AddFolderJob::Source>& sources,
                const Named& playlist, AddFolderJob::Mode mode);
} // namespace AddVerb

// The music by what its tags say.
namespace LibraryVerbs {
void artists(VerbContext& context);
void albums(VerbContext& context);
void search(VerbContext& context);
} // namespace LibraryVerbs

// Playlist files of other programs.
namespace ListFileVerbs {
void importFile(VerbContext& context);
void exportFile(VerbContext& context);
} // namespace ListFileVerbs

// On a device's file instead of the device.
namespace StoreVerbs {
void check(VerbContext& context);
void backup(VerbContext& context);
} // namespace StoreVerbs

namespace WatchVerb {
void watch(VerbContext& context);
}

namespace BrowseVerb {
void browse(VerbContext& context);
}

namespace CompletionVerb {
void script(VerbContext& context);
// What the script asks for at each key; not in the table of verbs that people read.
void line(VerbContext& context);
} // namespace CompletionVerb

namespace HelpVerbs {
void man(VerbContext& context);
}
