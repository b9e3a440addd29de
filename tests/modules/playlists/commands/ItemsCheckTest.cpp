#include "ItemsCheck.h"

#include <gtest/gtest.h>

namespace {

OrvoPlayListItem itemWithRoles(const char* roles) {
    OrvoPlayListItem item;
    item.setOrvoRoles(QString::fromUtf8(roles));
    return item;
}

} // namespace

// Each behind an item that has all, of which nothing may be left.
TEST(ItemsCheckTest, whatAPlaylistTakesIsAudioThatCanBeShownOrPlayed) {
    using Verdict = ItemsCheck::Verdict;
    constexpr const char* complete = R"({"mediaData":{"metaData":{"prePlayPath":"files:prePlay"},)"
                                     R"("resources":[{"uri":"file:///a"}]},"title":"a","type":3})";
    const struct {
        const char* roles;
        Verdict verdict;
    } rows[] = {
        {complete, Verdict::Fine},
        {R"({"title":"b","type":3})", Verdict::Fine},
        {R"({"title":"\u0062","type":3})", Verdict::Fine},
        {R"({"title":"b","type":3.0,"value":1.5})", Verdict::Fine},
        {R"({"mediaData":{"metaData":{"prePlayPath":"files:prePlay"},)"
         R"("resources":[{"uri":"file:///b"}]},"type":3})",
         Verdict::Fine},
        {R"({"mediaData":{"metaData":{"prePlayPath":"files:prePlay\u0062"},)"
         R"("resources":[{"uri":"file:///b"}]},"type":3})",
         Verdict::Fine},
        {"", Verdict::NoRoles},
        {R"({"title":"b"})", Verdict::NotAcceptable},
        {R"({"type":3})", Verdict::NotAcceptable},
        {R"({"title":"","type":3})", Verdict::NotAcceptable},
        {R"({"title":"b","type":1})", Verdict::NotAcceptable},
        {R"({"mediaData":{"resources":[{"uri":"file:///b"}]},"type":3})", Verdict::NotAcceptable},
        {R"({"mediaData":{"metaData":{"prePlayPath":"files:prePlay"}},"type":3})",
         Verdict::NotAcceptable},
        {R"({"title":"b","title":"c","type":3})", Verdict::NotAcceptable},
        {R"({"title":"b","type":3)", Verdict::NotAcceptable},
        {R"([3])", Verdict::NotAcceptable},
    };
    for (const auto& row : rows) {
        ItemsCheck check({itemWithRoles(complete), itemWithRoles(row.roles)}, PlayListLimits());
        EXPECT_TRUE(check.run(QDeadlineTimer(QDeadlineTimer::Forever)));
        EXPECT_EQ(Verdict::Fine, check.verdict(0));
        EXPECT_EQ(row.verdict, check.verdict(1)) << row.roles;
    }
}
