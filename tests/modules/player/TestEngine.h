#pragma once

#include <QStringList>

#include "EventLoop.h"
#include "PlayerEngine.h"

// An engine that plays any file, unless the test has rules of its own.
class TestEngine : public PlayerEngine {
public:
    explicit TestEngine(const QString& sink,
                        QHash<QString, QVariant> rules = {{QStringLiteral("player/files"),
                                                           "anywhere"}})
        : PlayerEngine(sink, SourceRules(rules)) {}
};

// Writes down what the engine tells and, at the end of an item, does what the test has laid out.
class Listener {
public:
    explicit Listener(PlayerEngine& engine) {
        const auto note = [this](const char* what, PlayerEngine::Generation generation) {
            told.append(QStringLiteral("%1 %2").arg(QString::fromLatin1(what)).arg(generation));
        };
        QObject::connect(&engine, &PlayerEngine::started, &engine,
                         [this, note](auto g) { note("started", g); });
        QObject::connect(&engine, &PlayerEngine::ended, &engine, [this, note](auto g) {
            note("ended", g);
            if (atEnd)
                atEnd(g);
        });
        QObject::connect(&engine, &PlayerEngine::finished, &engine,
                         [this, note](auto g) { note("finished", g); });
        QObject::connect(&engine, &PlayerEngine::failed, &engine,
                         [this, note](auto g, const QString& text) {
                             note("failed", g);
                             failure = text;
                         });
    }
    bool waitForCount(int count) {
        return waitUntil([&] { return told.size() >= count; });
    }
    bool waitForLast(const QString& what) {
        return waitUntil([&] { return !told.isEmpty() && told.last() == what; });
    }
    // Heard to its end, or failed.
    bool isOver(quint64 generation) const {
        return told.contains(QStringLiteral("finished %1").arg(generation)) ||
               told.contains(QStringLiteral("failed %1").arg(generation));
    }

    QStringList told;
    QString failure;
    std::function<void(PlayerEngine::Generation)> atEnd;
};
