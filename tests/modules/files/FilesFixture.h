#pragma once

#include <gtest/gtest.h>
#include <memory>

#include <QTemporaryDir>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "FilesWorker.h"
#include "OrvoPlayListItem.h"
#include "SoundFiles.h"

// A music folder in a temporary folder, the root of the data model, and the module over them.
class FilesFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite();

    void SetUp() override;
    void TearDown() override;

    // The absolute name of a file of the music folder.
    QString file(const QString& relative) const { return m_folder.path() + "/music/" + relative; }
    QString outside(const QString& relative) const { return m_folder.path() + "/" + relative; }
    static QString url(const QString& file);

    // Makes the worker; nothing is scanned until events are handled.
    void start();
    void startAndScan();
    void stop() { m_worker.reset(); }
    FilesWorker* worker() const { return m_worker.get(); }

    bool waitUntilScanned();
    QVariantHash scanValue() const;

    struct Rows {
        CMError error; // unnamed when all is well
        OrvoRowsRoles answer;
        QVariantList column(const QString& role) const;
        QStringList titles() const;
        OrvoRoles row(int index) const;
        QStringList names;
    };
    Rows rows(const QString& path, int from = 0, int to = CMGetRowsRequest::LastRow,
              const QStringList& names = OrvoRoles::defaultNames()) const;
    QStringList titles(const QString& path) const { return rows(path).titles(); }

    CMReply<QVariant> set(const QString& path, const QVariant& value) const;
    // Asks for the items of these paths and waits for them.
    QList<OrvoPlayListItem> prepare(const QStringList& paths) const;
    static QStringList itemTitles(const QList<OrvoPlayListItem>& items);

private:
    QTemporaryDir m_folder;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<FilesWorker> m_worker;
};
