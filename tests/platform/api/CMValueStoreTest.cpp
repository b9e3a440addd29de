#include "CMValueStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "CMRootWorker.h"
#include "LogCapture.h"
#include "Printing.h"

namespace {

class CMValueStoreTest : public ::testing::Test {
protected:
    bool set(CMValueStore& store, const CMPath& path, const QVariant& value) {
        error = CMError();
        return store.setValue(path, value, &error);
    }
    void write(const QByteArray& text) const {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
    }
    static QByteArray read(const QString& name) {
        QFile in(name);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    QJsonObject written() const { return QJsonDocument::fromJson(read(file)).object(); }

    QTemporaryDir folder;
    const QString file = folder.filePath("settings.json");
    const CMPath limit = OrvoPlayListsSettingsDataBaseItemsLimitPath();
    const CMPath vacuum = OrvoPlayListSettingsDataBaseVacuumPath();
    const CMPath target = OrvoPowerManagerTargetPath();
    CMError error;
};

} // namespace

TEST_F(CMValueStoreTest, aValueThatWasNeverStoredReadsEmpty) {
    const CMValueStore store(file);
    for (const CMValueDeclaration& row : CMValueStore::declarations()) {
        const CMPath path{QString(row.path)};
        EXPECT_TRUE(store.isDeclared(path));
        EXPECT_FALSE(store.hasValue(path));
        EXPECT_TRUE(store.value(path).isEmpty());
        EXPECT_EQ(store.value(path).i32(), 0);
        EXPECT_FALSE(store.value(path).bool_());
    }
    EXPECT_FALSE(QFile::exists(file)) << "reading writes nothing";
}

TEST_F(CMValueStoreTest, aTextIsTakenUpToItsGreatestLengthAndNothingElseIsAText) {
    const CMPath text = OrvoPlayerSettingsResumePointPath();
    CMValueStore store(file);
    const QString longest(CMValueStore::MaxTextLength, QChar(0x1f));
    EXPECT_TRUE(store.setValue(text, longest, &error));
    EXPECT_FALSE(store.setValue(text, QString(longest + "x"), &error));
    EXPECT_EQ(error.name(), CMError::InvalidValue());
    EXPECT_FALSE(store.setValue(text, 5, &error));
    EXPECT_EQ(CMValueStore(file).value(text).string(), longest) << "the file can be read";
}

TEST_F(CMValueStoreTest, everyFunctionNamesItsDeclaredPath) {
    QStringList functions;
    for (const CMValueDeclaration& row : CMValueStore::declarations())
        functions.append(row.function);
    int row = 0;
#define CHECK_ROW(function, path, key, type, persistent)                                           \
    EXPECT_EQ(functions.value(row++), #function);                                                  \
    EXPECT_EQ(function().toString(), path);
    ORVO_VALUE_PATHS(CHECK_ROW)
#undef CHECK_ROW
    EXPECT_EQ(functions.size(), row);
}

TEST_F(CMValueStoreTest, itTakesTheHashFormAndTheBareValue) {
    CMValueStore store(file);
    const QList<QPair<QVariant, int>> rows = {{QVariantHash{{"i32", 100}}, 100},
                                              {QVariantMap{{"i32", "101"}}, 101},
                                              {102, 102},
                                              {"103", 103},
                                              {104.0, 104},
                                              {-1, -1}};
    for (const auto& row : rows) {
        EXPECT_TRUE(set(store, limit, row.first));
        EXPECT_EQ(store.value(limit).toHash(), QVariantHash({{"i32", row.second}}));
    }
    const QList<QPair<QVariant, bool>> flags = {
        {true, true}, {false, false}, {1, true},
        {0, false},   {"true", true}, {"false", false},
        {"1", true},  {"0", false},   {QVariantHash{{"bool", true}}, true}};
    for (const auto& row : flags) {
        EXPECT_TRUE(set(store, vacuum, row.first));
        EXPECT_EQ(store.value(vacuum).toHash(), QVariantHash({{"bool", row.second}}));
    }
}

TEST_F(CMValueStoreTest, wrongTypesAreRefusedAndChangeNothing) {
    CMValueStore store(file);
    ASSERT_TRUE(set(store, limit, 100));
    ASSERT_TRUE(set(store, vacuum, true));
    const QByteArray before = read(file);
    for (const QVariant& bad :
         QVariantList{"many", 1.5, true, QVariant(), QVariantList{1}, QVariantHash{{"bool", true}},
                      QVariantHash(), QVariantHash{{"i32", "x"}}, Q_INT64_C(4294967296),
                      QVariantHash{{"i32", QVariantHash()}}}) {
        EXPECT_FALSE(set(store, limit, bad)) << bad.typeName() << ' ' << bad.toString();
        EXPECT_EQ(error.name(), CMError::InvalidValue());
        EXPECT_EQ(error.message().toString(),
                  "The value of settings:playlists/databaseItemsLimit must be a int.");
    }
    for (const QVariant& bad :
         QVariantList{"yes", 2, -1, QVariant(), QVariantHash{{"i32", 1}}, QVariantList()}) {
        EXPECT_FALSE(set(store, vacuum, bad)) << bad.typeName() << ' ' << bad.toString();
        EXPECT_EQ(error.message().toString(),
                  "The value of settings:playlists/databaseVacuum must be a bool.");
    }
    EXPECT_EQ(store.value(limit).i32(), 100);
    EXPECT_TRUE(store.value(vacuum).bool_());
    EXPECT_EQ(read(file), before);
}

TEST_F(CMValueStoreTest, unknownPathsAreRefused) {
    CMValueStore store(file);
    for (const char* path : {"settings:playlists/unknown", "settings:playlists", "settings:", "",
                             "playlists:root", "settings:playlists/databaseVacuum/x"}) {
        EXPECT_FALSE(store.isDeclared(CMPath(path))) << path;
        EXPECT_FALSE(set(store, CMPath(path), 1)) << path;
        EXPECT_EQ(error.name(), CMError::NoSuchNode());
        EXPECT_EQ(error.message().toString(), QString("There is no value at %1.").arg(path));
    }
    EXPECT_FALSE(QFile::exists(file));
}

TEST_F(CMValueStoreTest, anErrorNamesThePathWhateverIsInIt) {
    CMValueStore store(file);
    CMPath path = limit;
    path.addParam("x", "/");
    EXPECT_FALSE(set(store, path, "bad"));
    EXPECT_EQ(error.message().toString(),
              "The value of settings:playlists/databaseItemsLimit?x=%2F must be a int.");
}

TEST_F(CMValueStoreTest, persistentValuesAreThereAfterARestart) {
    {
        CMValueStore store(file);
        set(store, limit, 5000);
        set(store, vacuum, true);
        set(store, OrvoPlayListSettingsPlayqueueVisibilityPath(), false);
        EXPECT_TRUE(store.isPersistent(limit));
    }
    const CMValueStore store(file);
    EXPECT_EQ(store.value(limit).toHash(), QVariantHash({{"i32", 5000}}));
    EXPECT_EQ(store.value(vacuum).toHash(), QVariantHash({{"bool", true}}));
    EXPECT_TRUE(store.hasValue(OrvoPlayListSettingsPlayqueueVisibilityPath()));
    EXPECT_FALSE(store.hasValue(OrvoPlayListSettingsCollectionsVisibilityPath()));
}

TEST_F(CMValueStoreTest, eachChangeIsWrittenBeforeItCounts) {
    CMValueStore store(file);
    set(store, limit, 5000);
    EXPECT_EQ(written(), QJsonObject({{"settings:playlists/databaseItemsLimit", 5000}}));
    set(store, vacuum, true);
    EXPECT_EQ(written(), QJsonObject({{"settings:playlists/databaseItemsLimit", 5000},
                                      {"settings:playlists/databaseVacuum", true}}));
}

TEST_F(CMValueStoreTest, theFileIsReplacedNotRewritten) {
    CMValueStore store(file);
    set(store, limit, 1);
    // A process that has the old file open reads it to its end: a write in place would show
    // through.
    QFile old(file);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    set(store, limit, 2);
    EXPECT_EQ(QJsonDocument::fromJson(old.readAll()).object().value(limit.toString()).toInt(), 1);
    EXPECT_EQ(written().value(limit.toString()).toInt(), 2);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"settings.json"}))
        << "nothing is left behind";
}

TEST_F(CMValueStoreTest, thePowerManagersTargetDoesNotSurvive) {
    {
        CMValueStore store(file);
        EXPECT_TRUE(set(store, target, 2));
        EXPECT_EQ(store.value(target).toHash(), QVariantHash({{"target", 2}}));
        EXPECT_FALSE(store.isPersistent(target));
        EXPECT_FALSE(QFile::exists(file));
        set(store, limit, 1);
    }
    EXPECT_FALSE(CMValueStore(file).hasValue(target));
}

TEST_F(CMValueStoreTest, parametersNameNoOtherValue) {
    CMValueStore store(file);
    CMPath path = limit;
    path.addParam("x", "1");
    EXPECT_TRUE(set(store, path, 7));
    EXPECT_EQ(store.value(limit).i32(), 7);
    EXPECT_EQ(CMValueStore(file).value(limit).i32(), 7);
}

TEST_F(CMValueStoreTest, aDamagedFileIsKeptAsideAndStartsEmpty) {
    for (const QByteArray& damaged :
         {QByteArray("{\"settings:playl"), QByteArray(""), QByteArray("[1,2]"),
          QByteArray("\xFF\xFE\x00", 3), QByteArray("5")}) {
        write(damaged);
        LogCapture log("Settings");
        CMValueStore store(file);
        EXPECT_FALSE(store.hasValue(limit)) << damaged.constData();
        EXPECT_FALSE(QFile::exists(file)) << damaged.constData();
        EXPECT_EQ(read(file + ".damaged"), damaged);
        EXPECT_EQ(log.errors().size(), 1) << damaged.constData();
        EXPECT_TRUE(set(store, limit, 3));
        EXPECT_EQ(CMValueStore(file).value(limit).i32(), 3);
        EXPECT_EQ(read(file + ".damaged"), damaged);
    }
}

TEST_F(CMValueStoreTest, entriesThatAreNotUnderstoodAreLeftOutAndTheOthersRead) {
    write(R"({"settings:playlists/databaseItemsLimit": "many", "settings:other": 1, "": true,
              "powermanager:target": 2, "settings:playlists/databaseVacuum": true})");
    LogCapture log("Settings");
    const CMValueStore store(file);
    EXPECT_FALSE(store.hasValue(limit));
    EXPECT_FALSE(store.hasValue(target));
    EXPECT_TRUE(store.value(vacuum).bool_());
    EXPECT_EQ(log.texts("WARN").size(), 4);
    EXPECT_TRUE(log.contains("WARN", "setting settings:other is not understood and left out"));
}

TEST_F(CMValueStoreTest, aFolderThatCannotBeWrittenRefusesTheChange) {
    LogCapture log("Settings");
    CMValueStore store(folder.filePath("missing/settings.json"));
    EXPECT_FALSE(set(store, limit, 5));
    EXPECT_EQ(error.name(), "Error");
    EXPECT_EQ(error.message().toString(), "The setting could not be written.");
    EXPECT_FALSE(store.hasValue(limit));
    ASSERT_EQ(log.errors().size(), 1);
    EXPECT_TRUE(log.errors().first().startsWith("cannot write settings " +
                                                folder.filePath("missing/settings.json")));
    EXPECT_TRUE(set(store, target, 1)) << "what is not written needs no folder";
}

TEST_F(CMValueStoreTest, aSettingsFileThatIsAFolderIsNotReplaced) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("settings.json"));
    LogCapture log("Settings");
    CMValueStore store(file);
    EXPECT_FALSE(set(store, limit, 5));
    EXPECT_TRUE(QFileInfo(file).isDir());
}

TEST_F(CMValueStoreTest, aFileThatCannotBeReadTakesNoChangeAndStays) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(file).constData(), 0600), 0);
    LogCapture log("Settings");
    CMValueStore store(file);
    EXPECT_EQ(store.readError(), "cannot read the settings " + file + ": no regular file");
    EXPECT_FALSE(set(store, limit, 5));
    EXPECT_FALSE(store.hasValue(limit));
    EXPECT_EQ(log.errors(), QStringList{"cannot write settings: " + store.readError()});
    EXPECT_TRUE(set(store, target, 1)) << "what is not written needs no file";
    struct stat about {};
    ASSERT_EQ(::stat(QFile::encodeName(file).constData(), &about), 0);
    EXPECT_TRUE(S_ISFIFO(about.st_mode));
}

TEST_F(CMValueStoreTest, aFileThatIsTooLongStays) {
    const QByteArray longest =
        R"({"settings:playlists/databaseItemsLimit": 5)" + QByteArray(65536 - 44, ' ') + "}";
    ASSERT_EQ(longest.size(), CMValueStore::MaxFileBytes);
    write(longest);
    EXPECT_EQ(CMValueStore(file).value(limit).i32(), 5);
    write(longest + '\n');
    CMValueStore store(file);
    EXPECT_EQ(store.readError(), "cannot read the settings " + file + ": more than 65536 bytes");
    EXPECT_FALSE(set(store, limit, 6));
    EXPECT_EQ(read(file), longest + '\n');
}

TEST_F(CMValueStoreTest, withoutAFileValuesLiveInMemory) {
    CMValueStore store{QString()};
    EXPECT_TRUE(set(store, limit, 5));
    EXPECT_EQ(store.value(limit).i32(), 5);
}

TEST_F(CMValueStoreTest, theRootAnswersForItsValues) {
    CMRootWorker root(file);
    EXPECT_EQ(root.getValue(limit), QVariant(QVariantHash())) << "declared but never set: empty";
    const CMVoidReply good;
    root.setValue(limit, OrvoValue::fromI32(9).toVariant(), good);
    EXPECT_TRUE(good.isFinished());
    EXPECT_FALSE(good.isError());
    EXPECT_EQ(root.getValue(limit), QVariant(QVariantHash({{"i32", 9}})));
    const CMVoidReply bad;
    root.setValue(limit, "x", bad);
    EXPECT_TRUE(bad.isError());
    EXPECT_EQ(bad.error().name(), CMError::InvalidValue());
    const CMVoidReply unknown;
    root.setValue(CMPath("settings:playlists/unknown"), 1, unknown);
    EXPECT_EQ(unknown.error().name(), CMError::NoSuchNode());
    EXPECT_FALSE(root.getValue(CMPath("settings:playlists/unknown")).isValid());
}
