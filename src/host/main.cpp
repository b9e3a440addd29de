#include <cstdio>
#include <cstring>

#ifdef ORVO_MIMALLOC
#include <mimalloc.h>
#endif

#include <QCoreApplication>
#include <QTextCodec>
#include <QTimer>

#include "CMConnect.h"
#include "CMEnding.h"
#include "CMRootWorker.h"
#include "DataFolder.h"
#include "HostLog.h"
#include "HostOptions.h"
#include "LogSetup.h"
#include "ModuleLoader.h"
#include "OpenFiles.h"
#include "Settings.h"
#include "SignalWatcher.h"

namespace {

constexpr int Failure = 1;
constexpr int UsageError = 2;

// A start that fails is told to the terminal, and to the log when that is somewhere else.
int fail(const LogSetup& log, int exitStatus, const QString& text) {
    std::fprintf(stderr, "orvo-host: %s\n", qUtf8Printable(text));
    if (log.writesToFile())
        LOG4CPLUS_ERROR(hostLog(), text);
    return exitStatus;
}

int run(const HostOptions& options, LogSetup& log, long maxOpenFiles,
        const SignalWatcher& signalWatcher) {
    if (!log.fileError().isEmpty())
        return fail(log, Failure,
                    QStringLiteral("cannot write the log file %1: %2")
                        .arg(options.logFile(), log.fileError()));
    QString error;
    DataFolder data(options.dataDir());
    if (!data.take(&error))
        return fail(log, Failure, error);

    if (maxOpenFiles < OpenFiles::Wanted)
        LOG4CPLUS_WARN(hostLog(), "no more than " << maxOpenFiles << " files can be open at once, "
                                                  << OpenFiles::Wanted << " are wanted");

    CMRootWorker root(data.settingsFile());
    if (!root.values()->readError().isEmpty())
        return fail(log, Failure, root.values()->readError());
    cmConnect(&root, &CMRootWorker::requestBegins, qApp, [&log] { log.beginRequest(); });
    Settings::applyFactorySettings(&root, data.settingsFile());
    switch (Settings::apply(&root, options.settings(), &error)) {
    case Settings::Outcome::Applied:
        break;
    case Settings::Outcome::Refused:
        return fail(log, UsageError, error);
    case Settings::Outcome::NotWritten:
        return fail(log, Failure, error);
    }

    cmConnect(&signalWatcher, &SignalWatcher::endRequested, qApp, [](int signalNumber) {
        LOG4CPLUS_INFO(hostLog(), "ending on " << strsignal(signalNumber));
        QCoreApplication::quit();
    });

    ModuleLoader modules(options.moduleConfig());
    const QStringList files =
        options.modules().isEmpty() ? ModuleLoader::defaultModules() : options.modules();
    for (const QString& file : files) {
        if (modules.load(file, &error))
            continue;
        // A module that waits for something gives up when the process is told to end.
        if (!cmEndRequested())
            return fail(log, Failure, error);
        LOG4CPLUS_INFO(hostLog(), "ending during the start: " << error);
        return 0;
    }

    // Said from inside the loop: a script that waits for this line can send requests and signals.
    QTimer::singleShot(0, qApp, [&modules] {
        LOG4CPLUS_INFO(hostLog(), "ready, modules: " << modules.count());
        std::puts("orvo-host is ready");
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
#ifdef ORVO_MIMALLOC
    // The allocator gives memory back when it is called again later, which an idle device does not
    // do: what a large request took goes back with its end.
    mi_option_set(mi_option_decommit_delay, 0);
#endif
    // File names and arguments are UTF-8 whatever the environment's locale is: a service often runs
    // without one.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    // Before the application, which ends the process where it gets no descriptor.
    const long maxOpenFiles = OpenFiles::raiseLimit();
    if (maxOpenFiles < OpenFiles::Least) {
        std::fprintf(stderr,
                     "orvo-host: no more than %ld files can be open at once, %ld are needed\n",
                     maxOpenFiles, OpenFiles::Least);
        return Failure;
    }
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orvo-host"));

    HostOptions options;
    if (const auto ending = options.read(QCoreApplication::arguments())) {
        std::fputs(qUtf8Printable(ending->text), ending->exitStatus == 0 ? stdout : stderr);
        return ending->exitStatus;
    }
    const SignalWatcher signalWatcher;
    LogSetup log(options.logLevel(), options.logFile(), options.logLimits());
    return run(options, log, maxOpenFiles, signalWatcher);
}
