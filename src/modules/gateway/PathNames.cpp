#include "PathNames.h"

#include "CMValueStore.h"
#include "JsonWriter.h"
#include "OrvoPlayerPaths.h"
#include "OrvoPlayListPaths.h"

namespace {

struct NamedPath {
    const char* function;
    QString path;
};
using Table = QVector<NamedPath>;

Table tableOf(const QList<OrvoPathRow>& rows) {
    Table table;
    for (const OrvoPathRow& row : rows)
        table.append({row.function, QString::fromLatin1(row.path)});
    return table;
}

Table playListPaths() {
    return tableOf(orvoPlayListPaths());
}

Table playerPaths() {
    return tableOf(orvoPlayerPaths());
}

Table valuePaths() {
    Table table;
    for (const CMValueDeclaration& row : CMValueStore::declarations())
        table.append({row.function, QString::fromLatin1(row.path)});
    return table;
}

Table callNames() {
    return {{"OrvoPlayListPrepareItems", OrvoPlayListPrepareItems()}};
}

// Every library with path functions has its table here.
constexpr Table (*Tables[])() = {playListPaths, playerPaths, valuePaths, callNames};

QByteArray render() {
    JsonWriter json;
    json.beginObject();
    for (const auto& table : Tables) {
        for (const NamedPath& row : table()) {
            json.name(QString::fromLatin1(row.function));
            json.value(row.path);
        }
    }
    json.endObject();
    return json.text();
}

} // namespace

const QByteArray& PathNames::json() {
    static const QByteArray text = render();
    return text;
}
