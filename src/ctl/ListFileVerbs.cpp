#include <QFileInfo>
#include <QSaveFile>

#include "ClientFailure.h"
#include "TrackTable.h"
#include "Verbs.h"

namespace {

// In base64 no more fits into a request.
constexpr int MaxMegabytes = 6;
constexpr int BytesPerMegabyte = 1000 * 1000;

QByteArray readFile(const QString& name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw ClientFailure::usage(
            QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    // What stands for a device has no size, and no end either.
    QByteArray bytes = file.read(MaxMegabytes * BytesPerMegabyte + 1);
    if (bytes.size() > MaxMegabytes * BytesPerMegabyte)
        throw ClientFailure::refused(
            QStringLiteral("%1 is larger than %2 MB").arg(name).arg(MaxMegabytes));
    return bytes;
}

void writeFile(const QString& name, const QByteArray& bytes) {
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw ClientFailure::usage(
            QStringLiteral("cannot write %1: %2").arg(name, file.errorString()));
}

void tellNotFound(const QJsonArray& notFound) {
    for (const QJsonValue& each : notFound)
        Output::message(QStringLiteral("not found, line %1: %2")
                            .arg(each.toObject().value(QStringLiteral("line")).toInt())
                            .arg(each.toObject().value(QStringLiteral("text")).toString()));
}

} // namespace

void ListFileVerbs::importFile(VerbContext& context) {
    const QFileInfo file(context.arguments.at(0));
    const QByteArray bytes = readFile(file.filePath());
    QJsonObject record{{QStringLiteral("bytes"), QString::fromLatin1(bytes.toBase64())},
                       {QStringLiteral("file"), file.fileName()},
                       {QStringLiteral("base"), file.canonicalPath()}};
    if (context.arguments.has(QStringLiteral("name")))
        record.insert(QStringLiteral("name"),
                      Names::visible(context.arguments.value(QStringLiteral("name"))));
    const QJsonObject result = context.device.send(QStringLiteral("lists:import"), record)
                                   .value(QStringLiteral("result"))
                                   .toObject();
    const QJsonArray notFound = result.value(QStringLiteral("notFound")).toArray();
    if (context.output.isJson())
        context.output.json(result);
    else
        tellNotFound(notFound);
    if (!result.contains(QStringLiteral("plid")))
        throw ClientFailure::refused(
            QStringLiteral("none of its tracks is in the device's music folder"));
    const Named playlist{result.value(QStringLiteral("plid")).toInt(),
                         result.value(QStringLiteral("name")).toString()};
    const int added = result.value(QStringLiteral("added")).toInt();
    context.output.done(QStringLiteral("imported %1 of %2 to %3")
                            .arg(added)
                            .arg(TrackTable::plural(added + notFound.size()), playlist.label()));
}

void ListFileVerbs::exportFile(VerbContext& context) {
    const Arguments& arguments = context.arguments;
    const Named playlist = context.playlist();
    const QFileInfo file(arguments.at(1));
    QJsonObject record{{QStringLiteral("plid"), playlist.id},
                       {QStringLiteral("format"), file.suffix()}};
    if (arguments.has(QStringLiteral("paths")))
        record.insert(QStringLiteral("paths"), arguments.value(QStringLiteral("paths")));
    if (file.exists() && !arguments.has(QStringLiteral("force")))
        throw ClientFailure::refused(
            QStringLiteral("%1 is there already; --force replaces it").arg(file.filePath()));
    const QJsonObject result = context.device.send(QStringLiteral("lists:export"), record)
                                   .value(QStringLiteral("result"))
                                   .toObject();
    writeFile(file.filePath(), result.value(QStringLiteral("text")).toString().toUtf8());
    const int tracks = result.value(QStringLiteral("tracks")).toInt();
    if (context.output.isJson())
        context.output.json(QJsonObject{{QStringLiteral("file"), file.filePath()},
                                        {QStringLiteral("tracks"), tracks}});
    else
        context.output.done(
            QStringLiteral("exported %1 of %2 to %3")
                .arg(TrackTable::plural(tracks), playlist.label(), file.filePath()));
}
