#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include "CMJson.h"
#include "FuzzTarget.h"
#include "ItemRolesReader.h"
#include "ItemsCheck.h"
#include "JsonWriter.h"
#include "OrvoRoles.h"

namespace {

bool same(const QVariant& a, const QVariant& b);

template <typename Map>
bool sameMembers(const Map& a, const Map& b) {
    if (a.size() != b.size())
        return false;
    for (auto it = a.begin(); it != a.end(); ++it) {
        const auto other = b.constFind(it.key());
        if (other == b.constEnd() || !same(it.value(), *other))
            return false;
    }
    return true;
}

// Equal down to the types, which QVariant's own comparison does not ask for.
bool same(const QVariant& a, const QVariant& b) {
    if (a.userType() != b.userType())
        return false;
    if (a.userType() == QMetaType::QVariantHash)
        return sameMembers(a.toHash(), b.toHash());
    if (a.userType() == QMetaType::QVariantMap)
        return sameMembers(a.toMap(), b.toMap());
    if (a.userType() != QMetaType::QVariantList)
        return a == b;
    const QVariantList left = a.toList();
    const QVariantList right = b.toList();
    bool equal = left.size() == right.size();
    for (int i = 0; equal && i < left.size(); ++i)
        equal = same(left.at(i), right.at(i));
    return equal;
}

} // namespace

// The role map of an item as it is sent and stored: the quick reader says what the platform's
// parser says, the check comes to a verdict, and what a user interface gets is JSON again.
void Fuzz::roles(const QByteArray& input) {
    const QString text = QString::fromUtf8(input);
    OrvoPlayListItem item;
    item.setTitle(QStringLiteral("A title"));
    item.setArtist(QStringLiteral("Somebody"));
    item.setUrl(QStringLiteral("file:///a.flac"));
    item.setOrvoRoles(text);

    QJsonParseError error;
    const QJsonDocument document = cmReadJson(text.toUtf8(), &error);
    QVariantHash all = document.object().toVariantHash();
    const QByteArray rendered = [&all] {
        JsonWriter json;
        json.value(QVariant(all));
        return json.text();
    }();

    ItemRolesReader reader;
    require(reader.read(QByteArrayLiteral(
                R"({"title":"Before","type":3,"x":[1],"mediaData":{"metaData":{"album":"A"}}})")),
            "the text before");
    if (reader.read(text.toUtf8())) {
        require(error.error == QJsonParseError::NoError && document.isObject(),
                "the quick reader takes what is no object: " + text);
        QVariantHash mediaData = all.take(OrvoRoles::MediaData()).toHash();
        const QVariantHash metaData = mediaData.take(OrvoMediaData::MetaData()).toHash();
        require(same(all, reader.roles) && same(mediaData, reader.mediaData) &&
                    same(metaData, reader.metaData),
                "the quick reader differs: " + text);
    }

    ItemsCheck check({item}, PlayListLimits());
    require(check.run(QDeadlineTimer(QDeadlineTimer::Forever)), "a check that does not end");
    require((check.verdict(0) == ItemsCheck::Verdict::NoRoles) == text.isEmpty(),
            "only no text is no roles: " + text);
    require(check.verdict(0) != ItemsCheck::Verdict::Fine || document.isObject(),
            "fine, but no object: " + text);

    require(QJsonDocument::fromJson(rendered, &error).isObject(),
            "roles that render as no JSON: " + text);
    require(QString::fromUtf8(rendered).toUtf8() == rendered, "roles that render as no UTF-8");
}
