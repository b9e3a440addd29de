#include "BrowseRow.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

#include "Printing.h"

namespace {

BrowseRow row(const char* json) {
    return BrowseRow(QJsonDocument::fromJson(json).object());
}

} // namespace

TEST(BrowseRow, whatChoosingDoesFollowsFromTheRolesAlone) {
    struct Case {
        const char* json;
        RowAction inList;
        RowAction inMenu;
    };
    const Case cases[] = {
        {R"({"type":1,"path":"x:a"})", RowAction::OpenList, RowAction::OpenList},
        {R"({"type":1,"containerType":100,"path":"x:a"})", RowAction::OpenMenu,
         RowAction::OpenMenu},
        {R"({"type":1,"containerType":7,"path":"x:a"})", RowAction::OpenList, RowAction::OpenMenu},
        {R"({"type":3,"path":"x:a"})", RowAction::Play, RowAction::CarryOut},
        {R"({"type":101,"path":"x:a","value":{"string":""}})", RowAction::EditText,
         RowAction::EditText},
        {R"({"type":101,"path":"x:a"})", RowAction::EditText, RowAction::EditText},
        {R"({"type":101,"path":"x:a","value":{"bool":true}})", RowAction::CarryOut,
         RowAction::CarryOut},
        {R"({"type":102,"path":"x:a?action=play"})", RowAction::CarryOut, RowAction::CarryOut},
        {R"({"type":102,"path":"x:a?action=delPL&plid=1"})", RowAction::CarryOut,
         RowAction::CarryOutWhenSure},
        {R"({"type":102,"path":"x:a?plid=1&action=clearPl"})", RowAction::CarryOut,
         RowAction::CarryOutWhenSure},
        {R"({"type":102,"path":"x:a?action=delete"})", RowAction::CarryOut,
         RowAction::CarryOutWhenSure},
        {R"({"type":1,"containerType":100,"path":"x:a?fromplid=1&plid=2"})", RowAction::OpenMenu,
         RowAction::OpenMenu},
        {R"({"type":1,"containerType":100,"path":"x:a?fromplid=1&itemid=x:4&plid=1"})",
         RowAction::OpenMenu, RowAction::OpenMenu},
        {R"({"type":1,"containerType":100,"path":"x:a?action=node&fromplid=1&plid=1"})",
         RowAction::OpenMenu, RowAction::None},
        {R"({"type":103,"title":"A"})", RowAction::None, RowAction::None},
        {R"({"type":105})", RowAction::None, RowAction::None},
        {R"({"type":77,"path":"x:a"})", RowAction::None, RowAction::CarryOut},
        {R"({})", RowAction::None, RowAction::None},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(row(one.json).actionInList(), one.inList) << one.json;
        EXPECT_EQ(row(one.json).actionInMenu(), one.inMenu) << one.json;
    }
}

TEST(BrowseRow, aSwitchSendsItsOtherSideAndAnActionNothing) {
    EXPECT_EQ(row(R"({"type":101,"value":{"bool":true}})").valueToSend(),
              (QJsonObject{{"bool", false}}));
    EXPECT_EQ(row(R"({"type":101,"value":{"bool":false}})").valueToSend(),
              (QJsonObject{{"bool", true}}));
    EXPECT_EQ(row(R"({"type":102})").valueToSend(), QJsonObject());
}

TEST(BrowseRow, onlyAnEmptyTextMakesSomethingNew) {
    EXPECT_TRUE(row(R"({"type":101,"value":{"string":""}})").isCreate());
    EXPECT_FALSE(row(R"({"type":101,"value":{"string":"a"}})").isCreate());
    EXPECT_FALSE(row(R"({"type":101})").isCreate());
    EXPECT_FALSE(row(R"({"type":102,"value":{"string":""}})").isCreate());
}
