#include "base/table.h"

#include <gtest/gtest.h>

#include "base/width.h"

namespace olt::test {

namespace {

TEST(Width, CountsTheColumnsOfATerminal) {
  EXPECT_EQ(display_width(""), 0u);
  EXPECT_EQ(display_width("plain"), 5u);
  EXPECT_EQ(display_width("caf\xc3\xa9"), 4u);
  EXPECT_EQ(display_width("cafe\xcc\x81"), 4u) << "a combining accent";
  EXPECT_EQ(display_width("\xe4\xb8\xad\xe6\x96\x87"), 4u) << "two wide characters";
  EXPECT_EQ(display_width("\xf0\x9f\x98\x80"), 2u);
  EXPECT_EQ(display_width("a\xff\xe4\xb8"), 4u) << "bytes that are not UTF-8";
  EXPECT_EQ(display_width(std::string("\0\t", 2)), 2u);
}

TEST(Width, CutsBetweenCharacters) {
  EXPECT_EQ(fitting("plain", 3), "pla");
  EXPECT_EQ(fitting("plain", 9), "plain");
  EXPECT_EQ(fitting("\xe4\xb8\xad\xe6\x96\x87", 3), "\xe4\xb8\xad");
  EXPECT_EQ(fitting("e\xcc\x81x", 1), "e\xcc\x81") << "what takes no column stays with its letter";
  EXPECT_EQ(fitting("x", 0), "");
}

TEST(Table, AlignsByDisplayWidth) {
  EXPECT_EQ(table_text({{"name", "n"}, {"\xe4\xb8\xad\xe6\x96\x87", "1"}, {"caf\xc3\xa9s", "22"}}),
            "name   n\n"
            "\xe4\xb8\xad\xe6\x96\x87   1\n"
            "caf\xc3\xa9s  22\n");
  EXPECT_EQ(table_text({{"\xe4\xb8\xad", "b"}, {"1", ""}}, Rule::kBelowFirst),
            "\xe4\xb8\xad  b\n"
            "--  -\n"
            "1\n");
}

const std::vector<TableRow> kOnus = {{"onu", "state", "description"},
                                     {"1", "up", "north"},
                                     {"12", "blocked", "a long \xe4\xb8\xad\xe6\x96\x87 one"}};

TEST(Table, IsATableWhereItFits) {
  EXPECT_EQ(table_text_within(kOnus, 29), table_text(kOnus));
}

TEST(Table, IsABlockForEachRowWhereItDoesNotFit) {
  EXPECT_EQ(table_text_within(kOnus, 28),
            "onu          1\n"
            "state        up\n"
            "description  north\n"
            "\n"
            "onu          12\n"
            "state        blocked\n"
            "description  a long \xe4\xb8\xad\xe6\x96\x87 one\n");
  EXPECT_EQ(table_text_within(kOnus, 23),
            "onu          1\n"
            "state        up\n"
            "description  north\n"
            "\n"
            "onu          12\n"
            "state        blocked\n"
            "description  a long \xe4\xb8\xad\n"
            "             \xe6\x96\x87 one\n");
}

TEST(Table, ATerminalOfAnyWidthShowsEachCharacter) {
  EXPECT_EQ(table_text_within({{"n"}, {"\xe4\xb8\xad"}}, 1), "n  \xe4\xb8\xad\n");
  EXPECT_EQ(table_text_within({{"n"}, {"ab"}}, 1),
            "n  a\n"
            "   b\n");
}

}  // namespace

}  // namespace olt::test
