#include <QJsonArray>

#include "ClientFailure.h"
#include "PathText.h"
#include "TextTable.h"
#include "Verbs.h"

namespace {

const QString Clid = QStringLiteral("clid");

QJsonObject record(const Named& collection) {
    return {{Clid, collection.id}};
}

void print(const Output& output, const QVector<Named>& all) {
    TextTable table({QStringLiteral(">ID"), QStringLiteral("NAME")});
    QJsonArray array;
    for (const Named& one : all) {
        table.addRow({QStringLiteral("#%1").arg(one.id), one.name});
        array.append(
            QJsonObject{{QStringLiteral("id"), one.id}, {QStringLiteral("name"), one.name}});
    }
    if (output.isJson())
        output.json(array);
    else
        output.text(table.text());
}

// The device lists collections only where its setting says so, and an empty list alone would not
// tell.
void explainHidden(VerbContext& context) {
    const QString setting =
        context.device.path(QStringLiteral("OrvoPlayListSettingsCollectionsVisibilityPath"));
    if (context.device.value(setting).toObject().value(QStringLiteral("bool")).toBool())
        return;
    Output::message(
        QStringLiteral(
            "collections are hidden on this device; to see them: orvoctl value %1 true, and start "
            "the device again")
            .arg(setting));
}

Named collectionOf(VerbContext& context) {
    if (context.lists.collections().isEmpty())
        explainHidden(context);
    return context.collection();
}

void change(VerbContext& context, const char* function, const char* done) {
    const Named collection = collectionOf(context);
    const Named playlist = context.playlist(1);
    QJsonObject request = record(collection);
    request.insert(QStringLiteral("plid"), playlist.id);
    context.run(QString::fromLatin1(function), request,
                QString::fromLatin1(done).arg(playlist.label(), collection.label()));
}

} // namespace

void CollectionVerbs::list(VerbContext& context) {
    if (context.lists.collections().isEmpty())
        explainHidden(context);
    print(context.output, context.lists.collections());
}

void CollectionVerbs::create(VerbContext& context) {
    context.create(QStringLiteral("OrvoPlayListClCreatePath"));
}

void CollectionVerbs::remove(VerbContext& context) {
    const Named collection = collectionOf(context);
    context.run(QStringLiteral("OrvoPlayListClDeletePath"), record(collection),
                QStringLiteral("deleted the collection %1").arg(collection.label()));
}

void CollectionVerbs::add(VerbContext& context) {
    change(context, "OrvoPlayListClAddItemPath", "added %1 to the collection %2");
}

void CollectionVerbs::removeItem(VerbContext& context) {
    change(context, "OrvoPlayListClRemoveItemPath", "took %1 out of the collection %2");
}

void CollectionVerbs::show(VerbContext& context) {
    const Named collection = collectionOf(context);
    if (collection.name.isEmpty() && !context.lists.collections().isEmpty())
        throw ClientFailure::refused(
            QStringLiteral("there is no collection %1").arg(collection.label()));
    const QString path = context.device.path(QStringLiteral("OrvoPlayListClGetItemsPath")) +
                         QStringLiteral("?clid=%1").arg(collection.id);
    QVector<Named> members;
    for (const QJsonObject& row :
         context.device.rows(path, {QStringLiteral("title"), QStringLiteral("path")}).rows) {
        const QStringList components =
            PathText::components(row.value(QStringLiteral("path")).toString());
        if (!components.isEmpty())
            members.append(
                {components.last().toInt(), row.value(QStringLiteral("title")).toString()});
    }
    print(context.output, members);
}
