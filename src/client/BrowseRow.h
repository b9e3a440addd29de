#pragma once

#include <QJsonObject>
#include <QString>

// What choosing a row does.
enum class RowAction {
    None,
    Play,
    OpenList,
    OpenMenu,
    EditText,
    CarryOut,
    CarryOutWhenSure, // cannot be taken back: asked twice
};

// One row of a list and what it means, from its roles alone. A value; a default one stands for a
// row that is still on its way.
class BrowseRow {
public:
    enum Type {
        Container = 1,
        Audio = 3,
        Editable = 101, // a text or a switch
        Action = 102,
        Header = 103,
        Separator = 105
    };

    BrowseRow() = default;
    explicit BrowseRow(const QJsonObject& roles) : m_roles(roles) {}

    const QJsonObject& roles() const { return m_roles; }
    bool isThere() const { return !m_roles.isEmpty(); }
    int type() const;
    QString title() const;
    QString path() const;
    // Where the row's own menu opens; empty when it has none.
    QString contextPath() const;
    QString artist() const { return metaText("artist"); }
    QString album() const { return metaText("album"); }
    qint64 duration() const; // milliseconds, 0 when unknown
    QString playLogicPath() const { return metaText("playLogicPath"); }
    // The place that a track says it has in its list, from 0; -1 when it says none.
    int position() const;
    // The text of an editable row.
    QString text() const;
    bool isOn() const;

    bool opens() const { return type() == Container; }
    bool isMenu() const;
    bool isSwitch() const;
    // An editable text without a text yet makes something new.
    bool isCreate() const;
    // A row that is still on its way may be stood on, too. A list as the target of its own merge
    // may not.
    bool canBeChosen() const;

    RowAction actionInList() const;
    RowAction actionInMenu() const;
    // What to send to the row's path to carry it out; a switch is turned over.
    QJsonObject valueToSend() const;

private:
    bool mergesIntoItself() const;
    int containerType() const;
    QString metaText(const char* name) const;

    QJsonObject m_roles;
};
