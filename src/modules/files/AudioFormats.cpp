#include "AudioFormats.h"

#include <QHash>

namespace {

struct FormatRow {
    const char* suffix;
    const char* mimeType;
};
constexpr FormatRow Formats[] = {
    {"aac", "audio/aac"},      {"aif", "audio/aiff"},     {"aifc", "audio/aiff"},
    {"aiff", "audio/aiff"},    {"ape", "audio/x-ape"},    {"flac", "audio/flac"},
    {"m4a", "audio/mp4"},      {"m4b", "audio/mp4"},      {"mp2", "audio/mpeg"},
    {"mp3", "audio/mpeg"},     {"mp4", "audio/mp4"},      {"mpc", "audio/x-musepack"},
    {"oga", "audio/ogg"},      {"ogg", "audio/ogg"},      {"opus", "audio/ogg"},
    {"spx", "audio/ogg"},      {"tta", "audio/x-tta"},    {"wav", "audio/wav"},
    {"wma", "audio/x-ms-wma"}, {"wv", "audio/x-wavpack"},
};

QHash<QString, QString> makeTable() {
    QHash<QString, QString> table;
    for (const FormatRow& row : Formats)
        table.insert(QString::fromLatin1(row.suffix), QString::fromLatin1(row.mimeType));
    return table;
}

} // namespace

QString AudioFormats::mimeType(const QString& fileName) {
    static const QHash<QString, QString> table = makeTable();
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : table.value(fileName.mid(dot + 1).toLower());
}
