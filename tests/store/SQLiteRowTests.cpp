#include "store/sqlite/SQLiteRow.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

SQLiteRow rowOf(double real) {
    SQLiteRowPacker packer({"value"});
    packer.addReal(real);
    return packer.finishRow();
}

SQLiteRow mixedRow() {
    SQLiteRowPacker packer({"integer", "real", "text", "blob", "null"});
    packer.addInteger(-7);
    packer.addReal(2.75);
    packer.addText("12");
    packer.addBlob(std::vector<std::uint8_t>{1, 2, 3});
    packer.addNull();
    return packer.finishRow();
}

TEST(SQLiteRow, stringReaderTakesOnlyText) {
    const SQLiteRow row = mixedRow();
    EXPECT_EQ(row.text("text"), "12");
    for (const char* column : {"integer", "real", "blob", "null", "absent"})
        EXPECT_FALSE(row.text(column)) << column;
}

TEST(SQLiteRow, byteReaderTakesOnlyBlobs) {
    const SQLiteRow row = mixedRow();
    EXPECT_EQ(row.blob("blob")->size(), 3U);
    for (const char* column : {"integer", "real", "text", "null", "absent"})
        EXPECT_FALSE(row.blob(column)) << column;
}

TEST(SQLiteRow, integerReaderTakesNoTextOfDigits) {
    const SQLiteRow row = mixedRow();
    EXPECT_EQ(row.integer("integer"), -7);
    EXPECT_EQ(row.integer("real"), 2);
    for (const char* column : {"text", "blob", "null", "absent"})
        EXPECT_FALSE(row.integer(column)) << column;
}

TEST(SQLiteRow, integerReaderTruncatesTowardZero) {
    EXPECT_EQ(rowOf(-2.9).integer("value"), -2);
    EXPECT_EQ(rowOf(-9.3e18).storedInteger("value"), std::nullopt);
    EXPECT_EQ(rowOf(-9'223'372'036'854'775'808.0).integer("value"), std::numeric_limits<std::int64_t>::min());
}

TEST(SQLiteRow, storedIntegerGivesNothingForWhatNoIntegerHolds) {
    for (const double real : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, 9'223'372'036'854'775'808.0}) {
        EXPECT_FALSE(rowOf(real).storedInteger("value")) << real;
    }
}

TEST(SQLiteRowDeathTest, integerReaderStopsTheProcessForWhatNoIntegerHolds) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(rowOf(std::nan("")).integer("value"), "");
    EXPECT_DEATH(rowOf(1e300).integer("value"), "");
}

TEST(SQLiteRow, duplicateColumnKeepsTheRightmostValue) {
    SQLiteRowPacker packer({"name", "name"});
    packer.addInteger(1);
    packer.addText("second");
    const SQLiteRow row = packer.finishRow();
    EXPECT_EQ(row.text("name"), "second");
    EXPECT_FALSE(row.integer("name"));
    EXPECT_EQ(row.values().size(), 1U);
}

TEST(SQLiteRow, dictionaryHoldsEachCaseWithItsPayload) {
    const auto values = mixedRow().values();
    EXPECT_EQ(values.at("integer"), SQLiteValue(std::int64_t{-7}));
    EXPECT_EQ(values.at("real"), SQLiteValue(2.75));
    EXPECT_EQ(values.at("text"), SQLiteValue(std::string("12")));
    EXPECT_EQ(values.at("blob"), SQLiteValue(std::vector<std::uint8_t>{1, 2, 3}));
    EXPECT_EQ(values.at("null"), SQLiteValue(SQLiteNull()));
}

TEST(SQLiteRow, emptyRowHasNothing) {
    EXPECT_FALSE(SQLiteRow().text("any"));
    EXPECT_TRUE(SQLiteRow().values().empty());
}

TEST(SQLiteRow, rowsLargerThanABlockKeepTheirBytes) {
    SQLiteRowPacker packer({"text"});
    const std::string large(3'000'000, 'x');
    packer.addText("small");
    const SQLiteRow first = packer.finishRow();
    packer.addText(large);
    const SQLiteRow second = packer.finishRow();
    packer.addText("last");
    const SQLiteRow third = packer.finishRow();
    EXPECT_EQ(first.text("text"), "small");
    EXPECT_EQ(second.text("text"), large);
    EXPECT_EQ(third.text("text"), "last");
}

TEST(SQLiteRow, outlivesThePackerAndItsSiblings) {
    SQLiteRow kept;
    {
        SQLiteRowPacker packer({"text"});
        packer.addText("one");
        packer.finishRow();
        packer.addText("two");
        kept = packer.finishRow();
    }
    EXPECT_EQ(kept.text("text"), "two");
}

} // namespace
} // namespace quillbook
