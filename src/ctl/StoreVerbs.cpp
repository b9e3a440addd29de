#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryFile>

#include "ClientFailure.h"
#include "StoreCheck.h"
#include "StoreFile.h"
#include "Verbs.h"

namespace {

constexpr qint64 SmallestPage = 512;

QList<StoreFinding> findingsOf(sqlite3* connection, const QString& name) {
    if (!StoreCheck::holdsPlaylists(connection))
        throw ClientFailure::unreadable(
            QStringLiteral("%1 holds no playlists; is it another application's?").arg(name));
    return StoreCheck::findings(connection);
}

void show(const VerbContext& context, const QString& name, const QString& summary,
          const QList<StoreFinding>& findings) {
    if (context.output.isJson()) {
        QJsonArray all;
        for (const StoreFinding& finding : findings)
            all.append(QJsonObject{{QStringLiteral("finding"), finding.text},
                                   {QStringLiteral("advice"), finding.advice}});
        context.output.json(
            QJsonObject{{QStringLiteral("file"), name}, {QStringLiteral("findings"), all}});
        return;
    }
    QString advice;
    for (const StoreFinding& finding : findings) {
        // One advice for all findings in a row that share it.
        if (!advice.isEmpty() && finding.advice != advice)
            context.output.line(QStringLiteral("    → %1").arg(advice));
        advice = finding.advice;
        context.output.line(finding.text);
    }
    if (!advice.isEmpty())
        context.output.line(QStringLiteral("    → %1").arg(advice));
    if (findings.isEmpty())
        context.output.line(QStringLiteral("%1 is in order: %2").arg(name, summary));
}

// Where the copy goes: the given file, one with a name of its own in the given folder, or here.
QString targetOf(const VerbContext& context) {
    QString given =
        context.arguments.positional().size() > 1 ? context.arguments.at(1) : QStringLiteral(".");
    if (!QFileInfo(given).isDir())
        return given;
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    return QDir(given).filePath(QStringLiteral("playlists-%1.sqlite").arg(time));
}

ClientFailure cannotWrite(const QString& name, const QString& reason) {
    return ClientFailure::refused(QStringLiteral("cannot write %1: %2").arg(name, reason));
}

// The copy is on the disk before it has its name, and the name with it.
void giveName(QTemporaryFile* part, const QString& name, bool replace) {
    const QByteArray from = QFile::encodeName(part->fileName());
    const QByteArray to = QFile::encodeName(name);
    const int failed =
        replace ? std::rename(from.constData(), to.constData())
                : renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE);
    if (failed)
        throw cannotWrite(name, QString::fromLocal8Bit(std::strerror(errno)));
    part->setAutoRemove(false);
    const int folder = open(QFile::encodeName(QFileInfo(name).absolutePath()).constData(),
                            O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
}

} // namespace

void StoreVerbs::check(VerbContext& context) {
    const StoreFile file(context.arguments.at(0));
    const StoreFile::Connection copy = StoreFile::openMemory();
    QString damage;
    QList<StoreFinding> findings;
    if (QFileInfo(file.name()).size() == 0)
        findings.append({QStringLiteral("the file is empty"),
                         QStringLiteral("A device that starts with it begins anew.")});
    else if (file.copyTo(copy.get(), &damage))
        findings = findingsOf(copy.get(), file.name());
    else
        findings.append({damage, QString::fromUtf8(StoreCheck::putBackABackup)});
    if (QFileInfo(file.name()).size() % SmallestPage != 0)
        findings.append({QStringLiteral("the file ends in the middle of a page"),
                         QString::fromUtf8(StoreCheck::putBackABackup)});
    findings += StoreCheck::settingsFindings(file.name());
    if (file.wasCutOff())
        context.output.done(QStringLiteral("an edit was cut off and is left out here; the next "
                                           "start of the device rolls it back"));
    show(context, file.name(), findings.isEmpty() ? StoreCheck::summary(copy.get()) : QString(),
         findings);
    if (!findings.isEmpty())
        throw ClientFailure::refused(QStringLiteral("%1 is not in order, findings: %2")
                                         .arg(file.name())
                                         .arg(findings.size()));
}

void StoreVerbs::backup(VerbContext& context) {
    const StoreFile file(context.arguments.at(0));
    QString target = targetOf(context);
    const bool replace = context.arguments.has(QStringLiteral("force"));
    const QFileInfo existing(target);
    if (existing.exists() && !replace)
        throw ClientFailure::refused(
            QStringLiteral("%1 is there already; --force replaces it").arg(target));
    if (existing.exists() &&
        existing.canonicalFilePath() == QFileInfo(file.name()).canonicalFilePath())
        throw ClientFailure::refused(QStringLiteral("%1 is the device's own file").arg(target));

    QTemporaryFile part(target + QStringLiteral(".part-XXXXXX"));
    if (!part.open())
        throw cannotWrite(target, part.errorString());
    part.close();
    QList<StoreFinding> findings;
    QString summary;
    {
        const StoreFile::Connection copy = StoreFile::open(part.fileName(), SQLITE_OPEN_READWRITE);
        QString damage;
        if (!file.copyTo(copy.get(), &damage))
            throw ClientFailure::refused(
                QStringLiteral("cannot copy %1: %2").arg(file.name(), damage));
        findings = findingsOf(copy.get(), file.name());
        summary = StoreCheck::summary(copy.get());
    }
    QFile::setPermissions(part.fileName(), QFileInfo(file.name()).permissions());
    // A copy of what is not in order may be all that there is. Its name says so.
    if (!findings.isEmpty())
        target += QStringLiteral(".damaged");
    giveName(&part, target, replace);
    if (!findings.isEmpty()) {
        show(context, file.name(), {}, findings);
        throw ClientFailure::refused(
            QStringLiteral("%1 is not in order; the copy is kept as %2").arg(file.name(), target));
    }
    if (context.output.isJson())
        context.output.json(QJsonObject{{QStringLiteral("file"), target}});
    else
        context.output.done(QStringLiteral("copied %1 to %2").arg(summary, target));
}
