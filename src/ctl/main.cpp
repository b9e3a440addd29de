#include <QCoreApplication>
#include <QFile>

#include "CtlFailure.h"
#include "Verbs.h"

namespace {

const QString DefaultUrl = QStringLiteral("http://127.0.0.1:8080");
const QStringList GlobalValued = {QStringLiteral("url"), QStringLiteral("token-file")};
const QStringList GlobalFlags = {QStringLiteral("json"), QStringLiteral("help")};

// Takes the options before the verb off `words`; they may stand behind it, too.
QStringList takeLeadingOptions(QStringList* words) {
    QStringList options;
    while (!words->isEmpty() && words->first().startsWith(QLatin1String("--"))) {
        const QString word = words->takeFirst();
        options.append(word);
        if (GlobalValued.contains(word.mid(2)) && !words->isEmpty())
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

// From --token-file, from the file that ORVO_TOKEN_FILE names, or ORVO_TOKEN itself.
QByteArray readToken(const Arguments& arguments) {
    const QString option = QStringLiteral("token-file");
    const QString file =
        arguments.has(option) ? arguments.value(option) : qEnvironmentVariable("ORVO_TOKEN_FILE");
    if (file.isEmpty() && !arguments.has(option))
        return qgetenv("ORVO_TOKEN").trimmed();
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        throw CtlFailure::usage(
            QStringLiteral("the token file %1 cannot be read: %2").arg(file, opened.errorString()));
    constexpr qint64 LongestToken = 1024;
    const QByteArray token = opened.read(LongestToken).trimmed();
    for (const char c : token) {
        if (c <= ' ' || c > '~')
            throw CtlFailure::usage(QStringLiteral("the file %1 holds no token").arg(file));
    }
    return token;
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
                                  : DefaultUrl),
                     readToken(arguments));
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
