#include "Completion.h"
#include "Connection.h"
#include "ShellLine.h"
#include "Verbs.h"

namespace {

struct ShellRow {
    const char* shell;
    const char* script;
};

// Each asks this program for the candidates of the line up to the cursor. A candidate that ends
// with a slash leads further, so no blank follows it.
constexpr ShellRow Shells[] = {
    {"bash", R"(# bash completion for orvoctl
_orvoctl() {
    local word options=()
    # Of a word with a colon, bash completes only what follows it.
    if [[ $COMP_WORDBREAKS == *:* ]]; then options=(--after-colon); fi
    COMPREPLY=()
    while IFS= read -r word; do
        COMPREPLY+=("$word")
    done < <("$1" completion line "${options[@]}" -- "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} == 1 && ${COMPREPLY[0]} == */ ]]; then compopt -o nospace; fi
}
complete -o default -o filenames -F _orvoctl orvoctl
)"},
    {"zsh", R"(#compdef orvoctl
# zsh completion for orvoctl
_orvoctl() {
    local -a candidates folders
    local line="${(j: :)words[1,CURRENT-1]} $PREFIX"
    candidates=("${(@f)$($words[1] completion line -- "$line" 2>/dev/null)}")
    candidates=(${candidates:#})
    folders=(${(M)candidates:#*/})
    candidates=(${candidates:#*/})
    compadd -a candidates
    compadd -S '' -a folders
    (( $#candidates + $#folders )) || _files
}
if [[ $funcstack[1] == _orvoctl ]]; then _orvoctl "$@"; else compdef _orvoctl orvoctl; fi
)"},
};

// The options before the verb, taken off the words; the device is the one that they name.
QStringList takeOptions(QStringList* words) {
    QStringList options;
    while (words->size() > 1 && words->first().startsWith(QLatin1String("--"))) {
        const QString word = words->takeFirst();
        if (!Connection::options().contains(word.mid(2).section(QLatin1Char('='), 0, 0)))
            continue;
        options.append(word);
        if (!word.contains(QLatin1Char('=')) && words->size() > 1)
            options.append(words->takeFirst());
    }
    return options;
}

} // namespace

void CompletionVerb::script(VerbContext& context) {
    for (const ShellRow& row : Shells) {
        if (context.arguments.at(0) == QLatin1String(row.shell)) {
            context.output.text(QString::fromUtf8(row.script));
            return;
        }
    }
    throw ClientFailure::usage(
        QStringLiteral("\"bash\" or \"zsh\", not \"%1\"").arg(context.arguments.at(0)));
}

void CompletionVerb::line(VerbContext& context) {
    const ShellLine typed = ShellLine::parse(context.arguments.at(0));
    QStringList words = typed.words.mid(1);
    if (words.isEmpty())
        return;
    const QStringList options = takeOptions(&words);
    const Arguments named = Arguments::parse(options, Connection::options(), {});
    AsyncApi api(options.isEmpty() ? Connection::of(context.arguments) : Connection::of(named));
    Device device(&api);
    Lists lists(&device);
    const bool afterColon =
        context.arguments.has(QStringLiteral("after-colon")) && !typed.endsInQuotes;
    const int skipped = afterColon ? words.last().lastIndexOf(QLatin1Char(':')) + 1 : 0;
    for (const QString& candidate : Completion(&device, &lists).candidates(words))
        context.output.line(candidate.mid(skipped));
}
