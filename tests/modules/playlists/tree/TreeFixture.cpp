#include "TreeFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "CMNode.h"

namespace {

QString titleText(const TrString& title) {
    if (!title.isTranslatable())
        return '=' + title.source();
    const QString text = title.context() + '|' + title.source();
    return title.arguments().isEmpty() ? text : text + '|' + title.arguments().join('|');
}

QJsonValue asJson(const QVariant& value);

QJsonObject asJson(const QVariantHash& hash) {
    QJsonObject object;
    for (auto it = hash.begin(); it != hash.end(); ++it)
        object.insert(it.key(), it.key() == OrvoRoles::Title()
                                    ? titleText(TrString::fromVariant(it.value()))
                                    : asJson(it.value()));
    return object;
}

QJsonValue asJson(const QVariant& value) {
    if (value.type() == QVariant::Hash || value.type() == QVariant::Map)
        return asJson(value.toHash());
    if (value.type() != QVariant::List)
        return QJsonValue::fromVariant(value);
    QJsonArray array;
    const QVariantList list = value.toList();
    for (const QVariant& element : list)
        array.append(asJson(element));
    return array;
}

} // namespace

RowText::RowText(const QJsonObject& row)
    : QString(QString::fromUtf8(QJsonDocument(row).toJson(QJsonDocument::Compact))) {}

RowText::RowText(const OrvoHash& roles) : RowText(asJson(roles.toHash())) {}

QJsonObject Expected::menu(const QString& title, const QString& path) {
    return {{"title", title}, {"path", path}, {"type", 1}, {"containerType", 100}};
}

QJsonObject Expected::playable() {
    return {{"metaData", QJsonObject{{"playLogicPath", "playlists:playlogic"}}}};
}

QJsonObject Expected::header(const QString& title) {
    return {{"type", 103}, {"title", title}};
}

QJsonObject Expected::entry(const QString& title, const QString& path) {
    return {{"title", title},
            {"path", path},
            {"type", 101},
            {"value", QJsonObject{{"string", ""}}},
            {"modifiable", true}};
}

namespace {
// A row whose readers asked for all default roles.
OrvoRoles rolesOf(const QVariant& row) {
    const QVariantList values = row.toList();
    const QStringList& names = OrvoRoles::defaultNames();
    EXPECT_EQ(values.size(), names.size());
    OrvoRoles roles;
    for (int i = 0; i < names.size(); ++i) {
        if (values.value(i).isValid())
            roles.setAttribute(names.at(i), values.at(i));
    }
    return roles;
}
} // namespace

QList<RowText> rowTexts(const OrvoRowsRoles& reply) {
    QList<RowText> texts;
    const QVariantList rows = reply.rows();
    for (const QVariant& row : rows)
        texts.append(RowText(rolesOf(row)));
    return texts;
}

QList<RowText> rowTexts(const QList<QJsonObject>& rows) {
    QList<RowText> texts;
    for (const QJsonObject& row : rows)
        texts.append(RowText(row));
    return texts;
}

QStringList rowTitles(const OrvoRowsRoles& reply) {
    QStringList titles;
    const QVariantList rows = reply.rows();
    for (const QVariant& row : rows)
        titles.append(titleText(rolesOf(row).title()));
    return titles;
}

void PrintTo(const QList<RowText>& rows, std::ostream* out) {
    for (const RowText& row : rows)
        *out << "\n  " << static_cast<const QString&>(row);
}

void TreeFixture::show(bool playQueue, bool collections) {
    setSetting(OrvoPlayListSettingsPlayqueueVisibilityPath(), playQueue);
    setSetting(OrvoPlayListSettingsCollectionsVisibilityPath(), collections);
}

PartsFixture::PartsFixture() {
    QObject::connect(&subscribe, &CMSubscribe::changed, root()->events(), &CMSubscribe::changed);
}

OrvoRowsRoles PartsFixture::ask(CMNode* node, const QString& path, int from, int to,
                                const QStringList& roles) {
    const CMReplyData<OrvoRowsRoles> reply;
    EXPECT_TRUE(node->getRowsRequest(CMGetRowsRequest(CMPath(path), from, to, roles, reply)));
    EXPECT_TRUE(reply.isFinished());
    return reply.value();
}
