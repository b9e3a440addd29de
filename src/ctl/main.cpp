#include <QCoreApplication>

#include "CtlFailure.h"
#include "Verbs.h"

namespace {

const QString DefaultUrl = QStringLiteral("http://127.0.0.1:8080");
const QStringList GlobalValued = {QStringLiteral("url")};
const QStringList GlobalFlags = {QStringLiteral("json"), QStringLiteral("help")};

// Takes the options before the verb off `words`; they may stand behind it, too.
QStringList takeLeadingOptions(QStringList* words) {
    QStringList options;
    while (!words->isEmpty() && words->first().startsWith(QLatin1String("--"))) {
        const QString word = words->takeFirst();
        options.append(word);
        if (word == QLatin1String("--url") && !words->isEmpty())
            options.append(words->takeFirst());
    }
    return options;
}

QUrl parseUrl(const QString& text) {
    QUrl url(text);
    if (!url.isValid() || url.scheme() != QLatin1String("http") || url.host().isEmpty())
        throw CtlFailure::usage(QStringLiteral("\"%1\" is no http URL").arg(text));
    while (url.path().endsWith(QLatin1Char('/')))
        url.setPath(url.path().chopped(1));
    return url;
}

void run(QStringList words) {
    const QStringList leading = takeLeadingOptions(&words);
    const Arguments before = Arguments::parse(leading, GlobalValued, GlobalFlags);
    if (before.has(QStringLiteral("help")) || words == QStringList{QStringLiteral("help")}) {
        Output(false).text(Verbs::help());
        return;
    }
    const Verb& verb = Verbs::take(&words);
    const Arguments arguments =
        Arguments::parse(leading + words, verb.valued + GlobalValued, verb.flags + GlobalFlags);
    if (arguments.has(QStringLiteral("help"))) {
        Output(false).text(Verbs::help());
        return;
    }
    Verbs::checkCount(verb, arguments);
    ApiClient client(parseUrl(arguments.has(QStringLiteral("url"))
                                  ? arguments.value(QStringLiteral("url"))
                                  : DefaultUrl));
    Device device(&client);
    Names names(&device);
    Output output(arguments.has(QStringLiteral("json")));
    VerbContext context{arguments, device, names, output};
    verb.run(context);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    try {
        run(QCoreApplication::arguments().mid(1));
    } catch (const CtlFailure& failure) {
        Output::message(QStringLiteral("orvoctl: ") + failure.message);
        if (failure.wrongUse)
            Output::message(QStringLiteral("orvoctl --help lists the verbs"));
        return failure.status;
    }
    return 0;
}
