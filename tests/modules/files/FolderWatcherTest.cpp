#include "FolderWatcher.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "LogCapture.h"
#include "SoundFiles.h"
#include "TagReader.h"

namespace {

class FolderWatcherTest : public ::testing::Test {
protected:
    FolderPtr folder(const QString& name) {
        const FolderPtr made = std::make_shared<Folder>();
        made->name = name;
        made->diskPath = m_folder.filePath(name);
        QDir().mkpath(made->diskPath);
        return made;
    }

    QTemporaryDir m_folder;
};

TEST_F(FolderWatcherTest, manyChangesOfAFolderAreOne) {
    FolderWatcher watcher(10);
    QSignalSpy changed(&watcher, &FolderWatcher::changed);
    const FolderPtr a = folder("a");
    watcher.add(a);
    for (int i = 0; i < 20; ++i)
        SoundFiles::writeBytes(a->diskPath + QString("/%1").arg(i), "x");
    ASSERT_TRUE(changed.wait());
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<FolderPtr>(), a);
}

TEST_F(FolderWatcherTest, foldersBeyondTheLimitAreNotWatchedAndTheLogSaysSoOnce) {
    LogCapture log("Files");
    FolderWatcher watcher(2);
    std::vector<FolderPtr> folders;
    for (const char* name : {"a", "b", "c", "d"})
        folders.push_back(folder(name));
    for (const FolderPtr& each : folders)
        watcher.add(each);
    EXPECT_EQ(watcher.count(), 2);
    EXPECT_EQ(log.texts("WARN"),
              QStringList{"too many folders to watch; changes in " + folders[2]->diskPath +
                          " and further folders show after a rescan only (2 are watched)"});
    watcher.add(folders[0]);
    EXPECT_EQ(watcher.count(), 2) << "a folder that is watched already needs no place";
    watcher.remove(folders[0]);
    watcher.add(folders[3]);
    EXPECT_EQ(watcher.count(), 2) << "a place that became free is used";
}

TEST_F(FolderWatcherTest, readingTagsIsNoChange) {
    FolderWatcher watcher(10);
    QSignalSpy changed(&watcher, &FolderWatcher::changed);
    const FolderPtr a = folder("a");
    SoundFiles::writeWav(a->diskPath + "/x.wav");
    watcher.add(a);
    TagReader::read(a->diskPath + "/x.wav");
    // Longer than changes are gathered. If it were one, each scan would begin the next.
    EXPECT_FALSE(changed.wait(600));
}

TEST_F(FolderWatcherTest, aRemovedFolderIsNotReported) {
    FolderWatcher watcher(10);
    QSignalSpy changed(&watcher, &FolderWatcher::changed);
    const FolderPtr a = folder("a");
    const FolderPtr b = folder("b");
    watcher.add(a);
    watcher.add(b);
    SoundFiles::writeBytes(a->diskPath + "/x", "x");
    watcher.remove(a);
    SoundFiles::writeBytes(b->diskPath + "/x", "x");
    ASSERT_TRUE(changed.wait());
    QTest::qWait(1);
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<FolderPtr>(), b);
}

TEST_F(FolderWatcherTest, theSuccessorOfAMovedFolderKeepsTheWatch) {
    FolderWatcher watcher(10);
    QSignalSpy changed(&watcher, &FolderWatcher::changed);
    const FolderPtr before = folder("before");
    watcher.add(before);
    const FolderPtr after = std::make_shared<Folder>();
    after->diskPath = m_folder.filePath("after");
    ASSERT_TRUE(QDir().rename(before->diskPath, after->diskPath));
    watcher.add(after);
    watcher.remove(before);
    EXPECT_EQ(watcher.count(), 1);
    SoundFiles::writeBytes(after->diskPath + "/x", "x");
    ASSERT_TRUE(changed.wait());
    EXPECT_EQ(changed.at(0).at(0).value<FolderPtr>(), after);
}

} // namespace
