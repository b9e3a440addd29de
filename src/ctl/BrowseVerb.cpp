#include <unistd.h>

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include "browse/Browser.h"
#include "browse/BrowserPainter.h"
#include "browse/Terminal.h"
#include "browse/TerminalSignals.h"
#include "CtlFailure.h"
#include "Verbs.h"

namespace {
constexpr int TickMs = 500; // the clock of what plays
}

// Keys and events come through one event loop; however many come at once, it is drawn once.
void BrowseVerb::browse(VerbContext& context) {
    if (context.output.isJson())
        throw CtlFailure::usage(QStringLiteral("browse has no --json: rows and watch have"));
    Terminal::check();
    CellText::prepareLocale();
    ApiClient& client = context.device.client();
    const QJsonArray modules =
        client.get(QStringLiteral("/api/modules")).value(QLatin1String("modules")).toArray();
    Browser browser(&client, context.device.paths(), modules, context.arguments.at(0));

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
            if (key->name == Key::Redraw)
                draw();
            else
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
