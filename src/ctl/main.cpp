#include <QCoreApplication>

#include "ClientFailure.h"
#include "Connection.h"
#include "Verbs.h"

namespace {

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

void run(QStringList words) {
    const QStringList leading = takeLeadingOptions(&words);
    const Arguments before = Arguments::parse(leading, Connection::options(), GlobalFlags);
    if (before.has(QStringLiteral("help")) || words == QStringList{QStringLiteral("help")}) {
        Output(false).text(Verbs::help());
        return;
    }
    const Verb& verb = Verbs::take(&words);
    const Arguments arguments = Arguments::parse(
        leading + words, verb.valued + Connection::options(), verb.flags + GlobalFlags);
    if (arguments.has(QStringLiteral("help"))) {
        Output(false).text(Verbs::help());
        return;
    }
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
