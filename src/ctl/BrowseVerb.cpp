#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

#include <QCoreApplication>
#include <QFile>

#include "ClientFailure.h"
#include "Connection.h"
#include "Verbs.h"

// The terminal browser is a program of its own beside this one and takes its place.
void BrowseVerb::browse(VerbContext& context) {
    if (context.output.isJson())
        throw ClientFailure::usage(QStringLiteral("browse has no --json: rows and watch have"));
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/orvo-browse");
    std::vector<QByteArray> words{QFile::encodeName(program)};
    for (const QString& option : Connection::options()) {
        if (context.arguments.has(option))
            words.push_back(QStringLiteral("--%1=%2")
                                .arg(option, context.arguments.value(option))
                                .toLocal8Bit());
    }
    words.emplace_back("--");
    for (const QString& path : context.arguments.positional())
        words.push_back(path.toLocal8Bit());
    std::vector<char*> line;
    line.reserve(words.size() + 1);
    for (QByteArray& word : words)
        line.push_back(word.data());
    line.push_back(nullptr);
    ::execv(line.front(), line.data());
    throw ClientFailure::refused(QStringLiteral("cannot start %1: %2")
                                     .arg(program, QString::fromLocal8Bit(std::strerror(errno))));
}
