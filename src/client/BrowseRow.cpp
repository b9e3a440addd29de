#include "BrowseRow.h"

#include <QSet>

#include "PathText.h"

namespace {

constexpr int ContextMenu = 100; // container type

// Menu actions that cannot be taken back.
const QSet<QString>& irrevocable() {
    static const QSet<QString> actions = {QStringLiteral("clearPl"), QStringLiteral("delPL"),
                                          QStringLiteral("delete")};
    return actions;
}

QJsonObject child(const QJsonObject& object, const char* name) {
    return object.value(QLatin1String(name)).toObject();
}

QString textOf(const QJsonObject& object, const char* name) {
    return object.value(QLatin1String(name)).toString();
}

QJsonObject metaData(const QJsonObject& roles) {
    return child(child(roles, "mediaData"), "metaData");
}

} // namespace

int BrowseRow::type() const {
    return m_roles.value(QLatin1String("type")).toInt();
}

int BrowseRow::containerType() const {
    return m_roles.value(QLatin1String("containerType")).toInt();
}

QString BrowseRow::title() const {
    return textOf(m_roles, "title");
}

QString BrowseRow::path() const {
    return textOf(m_roles, "path");
}

QString BrowseRow::contextPath() const {
    return textOf(child(m_roles, "context"), "path");
}

QString BrowseRow::metaText(const char* name) const {
    return textOf(metaData(m_roles), name);
}

qint64 BrowseRow::duration() const {
    return qint64(metaData(m_roles).value(QLatin1String("duration")).toDouble());
}

int BrowseRow::position() const {
    return child(m_roles, "value").value(QLatin1String("i32")).toInt(-1);
}

QString BrowseRow::text() const {
    return textOf(child(m_roles, "value"), "string");
}

bool BrowseRow::isOn() const {
    return child(m_roles, "value").value(QLatin1String("bool")).toBool();
}

bool BrowseRow::isMenu() const {
    return opens() && containerType() == ContextMenu;
}

bool BrowseRow::isSwitch() const {
    return type() == Editable && child(m_roles, "value").value(QLatin1String("bool")).isBool();
}

bool BrowseRow::isCreate() const {
    const QJsonValue text = child(m_roles, "value").value(QLatin1String("string"));
    return type() == Editable && text.isString() && text.toString().isEmpty();
}

// The device offers every list as a target, the one that is to be merged as well.
bool BrowseRow::mergesIntoItself() const {
    const QString source = PathText::parameter(path(), QStringLiteral("fromplid"));
    return opens() && !source.isEmpty() &&
           source == PathText::parameter(path(), QStringLiteral("plid")) &&
           PathText::parameter(path(), QStringLiteral("itemid")).isEmpty();
}

bool BrowseRow::canBeChosen() const {
    return type() != Header && type() != Separator && !mergesIntoItself();
}

RowAction BrowseRow::actionInList() const {
    switch (type()) {
    case Audio:
        return RowAction::Play;
    case Container:
        return isMenu() ? RowAction::OpenMenu : RowAction::OpenList;
    case Editable:
        return isSwitch() ? RowAction::CarryOut : RowAction::EditText;
    case Action:
        return RowAction::CarryOut;
    default:
        return RowAction::None;
    }
}

RowAction BrowseRow::actionInMenu() const {
    if (!isThere() || !canBeChosen())
        return RowAction::None;
    if (opens())
        return containerType() != 0 ? RowAction::OpenMenu : RowAction::OpenList;
    if (type() == Editable && !isSwitch())
        return RowAction::EditText;
    return irrevocable().contains(PathText::parameter(path(), QStringLiteral("action")))
               ? RowAction::CarryOutWhenSure
               : RowAction::CarryOut;
}

QJsonObject BrowseRow::valueToSend() const {
    return isSwitch() ? QJsonObject{{QStringLiteral("bool"), !isOn()}} : QJsonObject();
}
