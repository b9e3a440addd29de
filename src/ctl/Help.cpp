#include "Help.h"

#include "Verbs.h"

namespace {

struct NameRow {
    const char* name;
    const char* help;
};

constexpr NameRow Options[] = {
    {"--url URL", "the device, http://127.0.0.1:8080 by default"},
    {"--token-file FILE", "the file with the token of a device that wants one"},
    {"--json", "results for programs: one line of JSON"},
    {"--help", "this help; behind a verb, that of the verb"},
    {"--version", "the version"},
};

constexpr NameRow Variables[] = {
    {"ORVO_URL", "the device, where no --url names it"},
    {"ORVO_TOKEN_FILE", "the file with the token, where no --token-file names it"},
    {"ORVO_TOKEN", "the token itself, where no file is named"},
};

constexpr NameRow Statuses[] = {
    {"0", "all went well"},
    {"1", "the device refused or is not there, or a check has findings"},
    {"2", "wrong use, or a file that cannot be read"},
};

const char* const NamingNote =
    "A playlist or collection is its name or #ID; the play queue is \"queue\" or #0.\n"
    "Positions count from 1.";

// "orvoctl volume [0-100]"
QString usageOf(const Verb& verb) {
    return QStringLiteral("orvoctl %1 %2")
        .arg(QLatin1String(verb.words), QLatin1String(verb.usage))
        .trimmed();
}

// What man would take for its own stays text.
QString roff(const QString& text) {
    QString safe = text;
    safe.replace(QLatin1Char('\\'), QLatin1String("\\e"));
    safe.replace(QLatin1Char('-'), QLatin1String("\\-"));
    safe.replace(QLatin1Char('\''), QLatin1String("\\(aq"));
    safe.replace(QLatin1Char('"'), QLatin1String("\\(dq"));
    safe.replace(QLatin1Char('~'), QLatin1String("\\(ti"));
    return safe.startsWith(QLatin1Char('.')) ? QStringLiteral("\\&") + safe : safe;
}

QString roff(const char* text) {
    return roff(QString::fromUtf8(text));
}

template <std::size_t Count>
QString section(const char* title, const NameRow (&rows)[Count]) {
    QString text = QStringLiteral(".SH %1\n").arg(QLatin1String(title));
    for (const NameRow& row : rows)
        text += QStringLiteral(".TP\n.B %1\n%2\n").arg(roff(row.name), roff(row.help));
    return text;
}

template <std::size_t Count>
QString columns(const NameRow (&rows)[Count]) {
    constexpr int Width = 20;
    QString text;
    for (const NameRow& row : rows)
        text += QStringLiteral("      %1%2\n")
                    .arg(QLatin1String(row.name), -Width)
                    .arg(QLatin1String(row.help));
    return text;
}

} // namespace

QString Help::version() {
    return QStringLiteral("orvoctl " ORVO_VERSION "\n");
}

QString Help::text() {
    QString text =
        QStringLiteral("usage: orvoctl [--url URL] [--token-file FILE] [--json] VERB ...\n\n");
    for (const Verb& verb : Verbs::all())
        text += QStringLiteral("  %1\n        %2\n")
                    .arg(usageOf(verb).section(QLatin1Char(' '), 1), QLatin1String(verb.help));
    return text + QStringLiteral("\nOptions:\n") + columns(Options) +
           QStringLiteral("\nFrom the environment:\n") + columns(Variables) +
           QStringLiteral("\nExit status:\n") + columns(Statuses) +
           QStringLiteral("\n%1\norvoctl VERB --help shows an example of each.\n")
               .arg(QLatin1String(NamingNote));
}

QString Help::of(const QVector<Verb>& verbs) {
    QStringList texts;
    for (const Verb& verb : verbs)
        texts.append(
            QStringLiteral("usage: %1\n\n%2\n\nfor example: orvoctl %3\n")
                .arg(usageOf(verb), QLatin1String(verb.help), QLatin1String(verb.example)));
    return texts.join(QLatin1Char('\n'));
}

QString Help::manPage() {
    QString text =
        QStringLiteral(".TH ORVOCTL 1 \"\" \"orvoctl " ORVO_VERSION "\"\n"
                       ".SH NAME\n"
                       "orvoctl \\- playlists, collections and playback of a device\n"
                       ".SH SYNOPSIS\n"
                       ".B orvoctl\n"
                       "[\\-\\-url URL] [\\-\\-token\\-file FILE] [\\-\\-json] VERB ...\n"
                       ".SH DESCRIPTION\n");
    text += roff(NamingNote) + QStringLiteral("\n.SH VERBS\n");
    for (const Verb& verb : Verbs::all())
        text += QStringLiteral(".TP\n.B %1\n%2\n.br\nExample: %3\n")
                    .arg(roff(usageOf(verb).section(QLatin1Char(' '), 1)), roff(verb.help),
                         roff(QStringLiteral("orvoctl ") + QLatin1String(verb.example)));
    return text + section("OPTIONS", Options) + section("ENVIRONMENT", Variables) +
           section("EXIT STATUS", Statuses);
}

void HelpVerbs::man(VerbContext& context) {
    context.output.text(Help::manPage());
}
