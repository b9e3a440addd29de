#include <optional>

#include <QCoreApplication>
#include <QRegularExpression>

#include "ClientFailure.h"
#include "Connection.h"
#include "Help.h"
#include "Verbs.h"

namespace {

const QString Version = QStringLiteral("version");
const QStringList GlobalFlags = {QStringLiteral("json"), QStringLiteral("help")};

// Takes the options before the verb off `words`; they may stand behind it, too.
QStringList takeLeadingOptions(QStringList* words) {
    QStringList options;
    while (!words->isEmpty() && words->first().startsWith(QLatin1String("--"))) {
        const QString word = words->takeFirst();
        options.append(word);
        if (Connection::options().contains(word.mid(2)) && !words->isEmpty())
            options.append(words->takeFirst());
    }
    return options;
}

// What help is wanted for: "help play", "--help play" and "play --help" say the same.
std::optional<QStringList> helpTopic(const Arguments& leading, const QStringList& words) {
    const bool isVerb = !words.isEmpty() && words.first() == QLatin1String("help");
    const QStringList options = words.mid(0, words.indexOf(QStringLiteral("--")));
    if (!isVerb && !leading.has(QStringLiteral("help")) &&
        !options.contains(QStringLiteral("--help")))
        return std::nullopt;
    static const QRegularExpression isNoOption(QStringLiteral("^[^-]"));
    return words.mid(isVerb ? 1 : 0).filter(isNoOption);
}

void showHelp(const QStringList& topic) {
    if (topic.isEmpty()) {
        Output(false).text(Help::text());
        return;
    }
    const Verb* verb = Verbs::find(topic);
    const QVector<Verb> verbs = verb ? QVector<Verb>{*verb} : Verbs::beginningWith(topic);
    if (verbs.isEmpty())
        throw Verbs::unknown(topic);
    Output(false).text(Help::of(verbs));
}

void run(QStringList words) {
    const QStringList leading = takeLeadingOptions(&words);
    const Arguments before =
        Arguments::parse(leading, Connection::options(), GlobalFlags + QStringList{Version});
    if (before.has(Version)) {
        Output(false).text(Help::version());
        return;
    }
    if (const auto topic = helpTopic(before, words)) {
        showHelp(*topic);
        return;
    }
    const Verb& verb = Verbs::take(&words);
    const Arguments arguments =
        Arguments::parse(leading + words, verb.options.valued + Connection::options(),
                         verb.options.flags + GlobalFlags);
    Verbs::checkCount(verb, arguments);
    AsyncApi api(Connection::of(arguments));
    Device device(&api);
    Lists lists(&device);
    Output output(arguments.has(QStringLiteral("json")));
    VerbContext context{arguments, device, lists, output};
    verb.run(context);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    try {
        run(QCoreApplication::arguments().mid(1));
    } catch (const ClientFailure& failure) {
        Output::message(QStringLiteral("orvoctl: ") + failure.message);
        if (failure.wrongUse)
            Output::message(QStringLiteral("orvoctl --help lists the verbs"));
        return failure.status;
    }
    return 0;
}
