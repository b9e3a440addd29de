#include "OrvoValue.h"

#include <climits>
#include <gtest/gtest.h>

#include "Printing.h"

TEST(OrvoValue, theEmptyOneReadsAsNothing) {
    const OrvoValue value;
    EXPECT_TRUE(value.isEmpty());
    EXPECT_EQ(value.i32(), 0);
    EXPECT_EQ(value.i64(), 0);
    EXPECT_EQ(value.double_(), 0.0);
    EXPECT_FALSE(value.bool_());
    EXPECT_EQ(value.string(), QString());
    EXPECT_EQ(value.tag(), QString());
    EXPECT_FALSE(value.containsBool_() || value.containsI32_() || value.containsI64_() ||
                 value.containsDouble_() || value.containsString_());
}

TEST(OrvoValue, eachKindHasItsTag) {
    EXPECT_EQ(OrvoValue::fromBool(true).toHash(), QVariantHash({{"bool", true}}));
    EXPECT_EQ(OrvoValue::fromI32(-3).toHash(), QVariantHash({{"i32", -3}}));
    EXPECT_EQ(OrvoValue::fromString("x").toHash(), QVariantHash({{"string", "x"}}));
    OrvoValue value;
    value.setI64_(Q_INT64_C(5000000000));
    EXPECT_EQ(value.toHash(), QVariantHash({{"i64", Q_INT64_C(5000000000)}}));
    EXPECT_EQ(value.i64(), Q_INT64_C(5000000000));
    value.setDouble_(2.5);
    EXPECT_EQ(value.toHash(), QVariantHash({{"double", 2.5}}));
    EXPECT_EQ(value.double_(), 2.5);
    EXPECT_EQ(OrvoValue::Bool_(), "bool");
    EXPECT_EQ(OrvoValue::I32_(), "i32");
    EXPECT_EQ(OrvoValue::I64_(), "i64");
    EXPECT_EQ(OrvoValue::Double_(), "double");
    EXPECT_EQ(OrvoValue::String_(), "string");
}

TEST(OrvoValue, oneTagIsHeldAtATime) {
    OrvoValue value = OrvoValue::fromBool(true);
    EXPECT_TRUE(value.containsBool_());
    EXPECT_EQ(value.tag(), "bool");
    value.setI32_(4);
    EXPECT_FALSE(value.containsBool_());
    EXPECT_TRUE(value.containsI32_());
    EXPECT_EQ(value.tag(), "i32");
    EXPECT_FALSE(value.bool_());
    value.setString_("");
    EXPECT_TRUE(value.containsString_());
    EXPECT_FALSE(value.containsI32_());
    EXPECT_EQ(value.tag(), "string");
    EXPECT_EQ(value.i32(), 0);
}

TEST(OrvoValue, keysItDoesNotKnowAreKept) {
    OrvoValue value(QVariantHash{{"i32", 1}, {"unit", "s"}});
    value.setI32_(2);
    value.setBool_(true);
    EXPECT_EQ(value.toHash(), QVariantHash({{"bool", true}, {"unit", "s"}}));
}

TEST(OrvoValue, numbersAreReadStrictly) {
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", "17"}}).i32(), 17);
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", 17.0}}).i32(), 17);
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", 17.5}}).i32(), 0);
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", Q_INT64_C(4294967297)}}).i32(), 0)
        << "nothing wraps around";
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", INT_MIN}}).i32(), INT_MIN);
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", INT_MAX}}).i32(), INT_MAX);
    EXPECT_EQ(OrvoValue(QVariantHash{{"i32", true}}).i32(), 0);
}
