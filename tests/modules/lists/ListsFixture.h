#pragma once

#include <gtest/gtest.h>
#include <memory>

#include <QTemporaryDir>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "ListsWorker.h"
#include "Printing.h"
#include "SoundFiles.h"

// A music folder and a store in a temporary folder, the real modules over them, and the lists
// module.
class ListsFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite();

    ListsFixture();
    ~ListsFixture() override;

    // A silent track in the music folder.
    void track(const QString& name, const SoundTags& tags = {}, int durationMs = 1000);
    QString musicFolder() const { return m_folder.path() + "/music"; }
    // Of the store, before start().
    static void setItemsLimit(int items);
    // Loads the modules and waits until the library is known.
    void start(const QHash<QString, QVariant>& config = {});

    // Ends the modules where they are, and loads them again.
    void restart();
    // Another one may take its place.
    void unloadFiles();

    // What was answered. An error has a name.
    struct Answer {
        CMError error;
        QVariantHash value;

        QString message() const { return error.message().toString(); }
        int plid() const { return value.value("plid", -1).toInt(); }
        int added() const { return value.value("added", -1).toInt(); }
        QString text() const { return value.value("text").toString(); }
        // "3: gone.mp3"
        QStringList notFound() const;
    };
    static Answer call(const QString& path, const QVariantHash& args);
    static Answer importText(const QString& text, const QString& file = "list.m3u8");
    static Answer importBytes(const QByteArray& bytes, const QString& file,
                              const QString& base = {});
    static Answer exportList(int plid, const QString& format = "m3u8",
                             const QString& paths = "relative");

    // Of a playlist's tracks: the files' names below the music folder, other addresses whole.
    QStringList tracks(int plid) const;
    static QList<OrvoRoles> rows(int plid);
    static QStringList playlistNames();

private:
    void unload();
    void load(const char* module, const QHash<QString, QVariant>& config);

    QTemporaryDir m_folder;
    QString m_folderBefore;
    std::unique_ptr<CMRootWorker> m_root;
    QHash<QString, QVariant> m_config;
    std::vector<std::unique_ptr<CMAbstractWorker>> m_modules;
};
