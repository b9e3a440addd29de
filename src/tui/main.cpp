#include <unistd.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>

#include "Arguments.h"
#include "Awaited.h"
#include "Browser.h"
#include "BrowserPainter.h"
#include "ClientFailure.h"
#include "Connection.h"
#include "SafeText.h"
#include "Terminal.h"
#include "TerminalSignals.h"

namespace {

constexpr int TickMs = 500; // the clock of what plays
const QString Help = QStringLiteral("help");

QJsonObject ask(const Connection& connection, const QString& resource) {
    AsyncApi api(connection);
    const ApiAnswer answer =
        awaited<ApiAnswer>([&](const auto& done) { api.get(resource, {}, done); });
    if (!answer.error.isEmpty())
        throw ClientFailure::refused(answer.status == 0 ? api.unreachable() : answer.error);
    return answer.body;
}

// Keys and events come through one event loop; however many come at once, it is drawn once.
void browse(const Connection& connection, const QString& start) {
    Terminal::check();
    CellText::prepareLocale();
    const QJsonArray modules =
        ask(connection, QStringLiteral("/api/modules")).value(QLatin1String("modules")).toArray();
    Browser browser(connection, ask(connection, QStringLiteral("/api/paths")), modules, start);

    QEventLoop loop;
    TerminalSignals signalled;
    Terminal terminal;
    BrowserPainter painter(&terminal, &browser);
    QTimer drawing;
    drawing.setSingleShot(true);
    drawing.setInterval(0);
    QTimer clock;
    clock.setInterval(TickMs);
    QSocketNotifier keyboard(STDIN_FILENO, QSocketNotifier::Read);

    const auto draw = [&] { drawing.start(); };
    QObject::connect(&drawing, &QTimer::timeout, &loop, [&] { painter.paint(); });
    QObject::connect(&browser, &Browser::changed, &loop, draw);
    QObject::connect(&browser, &Browser::quit, &loop, &QEventLoop::quit);
    QObject::connect(&clock, &QTimer::timeout, &loop, [&] {
        if (browser.player().isPlaying())
            draw();
    });
    QObject::connect(&keyboard, &QSocketNotifier::activated, &loop, [&] {
        bool any = false;
        while (const auto key = terminal.readKey()) {
            any = true;
            browser.press(*key);
        }
        if (!any && terminal.isGone())
            loop.quit();
    });
    QObject::connect(&signalled, &TerminalSignals::resized, &loop, [&] {
        terminal.takeSize();
        draw();
    });
    QObject::connect(&signalled, &TerminalSignals::ended, &loop, &QEventLoop::quit);
    browser.start();
    clock.start();
    draw();
    loop.exec();
}

void run(const QStringList& words) {
    const Arguments arguments = Arguments::parse(words, Connection::options(), {Help});
    if (arguments.has(Help)) {
        QTextStream(stdout) << "usage: orvo-browse [--url URL] [--token-file FILE] [PATH]\n"
                               "The device's lists in this terminal; ? shows the keys.\n";
        return;
    }
    if (arguments.positional().size() > 1)
        throw ClientFailure::usage(QStringLiteral("usage: orvoctl browse [PATH]"));
    browse(Connection::of(arguments), arguments.at(0));
}

} // namespace

// Started by `orvoctl browse`, and speaks in its name.
int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    try {
        run(QCoreApplication::arguments().mid(1));
    } catch (const ClientFailure& failure) {
        QTextStream(stderr) << SafeText::forTerminal(QStringLiteral("orvoctl: ") + failure.message)
                            << (failure.wrongUse ? "\norvoctl --help lists the verbs\n" : "\n");
        return failure.status;
    }
    return 0;
}
