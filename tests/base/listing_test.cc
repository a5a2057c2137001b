#include "base/listing.h"

#include <gtest/gtest.h>

#include <random>

namespace olt::test {

namespace {

constexpr char kListing[] =
    "Statistics of port 1/1\n"
    "======================\n"
    "\n"
    "Link\n"
    "State            up\n"
    "Seconds counted  4\n"
    "\n"
    "Counters\n"
    "Counter         Received  Sent\n"
    "--------------  --------  ----\n"
    "Octets          6297500\n"
    "Unicast frames            5442\n"
    "\n"
    "No setting differs.\n";

TEST(ListingText, IsReadAsItWasWritten) {
  std::optional<ListingContent> read = read_listing_text(kListing);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->title, "Statistics of port 1/1");
  ASSERT_EQ(read->sections.size(), 3u);
  EXPECT_EQ(read->sections[0].heading, "Link");
  EXPECT_EQ(read->sections[0].rule, Rule::kNone);
  EXPECT_EQ(read->sections[0].table,
            (std::vector<TableRow>{{"State", "up"}, {"Seconds counted", "4"}}));
  EXPECT_EQ(read->sections[1].heading, "Counters");
  EXPECT_EQ(read->sections[1].rule, Rule::kBelowFirst);
  EXPECT_EQ(read->sections[1].table, (std::vector<TableRow>{{"Counter", "Received", "Sent"},
                                                            {"Octets", "6297500", ""},
                                                            {"Unicast frames", "", "5442"}}));
  EXPECT_EQ(read->sections[2].heading, "No setting differs.");
  EXPECT_TRUE(read->sections[2].table.empty());
}

TEST(ListingText, BelowARuleCellsMayHoldBlanks) {
  std::optional<ListingContent> read = read_listing_text(
      "t\n=\n\nh\n"
      "ONU    Description\n"
      "-----  -----------\n"
      "a   b    two  here\n"
      "1/1/1\n");
  ASSERT_TRUE(read);
  EXPECT_EQ(
      read->sections[0].table,
      (std::vector<TableRow>{{"ONU", "Description"}, {"a   b", "  two  here"}, {"1/1/1", ""}}));
}

TEST(ListingText, WithoutARuleTwoBlanksInAllRowsDivideCells) {
  std::optional<ListingContent> read = read_listing_text(
      "t\n=\n\nh\n"
      "basic  1 channel\n"
      "       7          0000\n"
      "\nh\n"
      "a  b\n"
      "\nh\n"
      "a  b\n"
      "cdef\n");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->sections[0].table,
            (std::vector<TableRow>{{"basic", "1 channel"}, {"", "7", "0000"}}));
  EXPECT_EQ(read->sections[1].table, (std::vector<TableRow>{{"a", "b"}}));
  EXPECT_EQ(read->sections[2].table, (std::vector<TableRow>{{"a  b"}, {"cdef"}}));
}

TEST(ListingText, WideCharactersKeepTheirColumns) {
  std::vector<TableRow> table = {
      {"name", "n"}, {"\xe4\xb8\xad\xe6\x96\x87", "1"}, {"caf\xc3\xa9s", "2"}};
  for (Rule rule : {Rule::kNone, Rule::kBelowFirst}) {
    auto read = read_listing_text(listing_text({"\xe4\xb8\xad", {{"h", table, rule}}}));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->title, "\xe4\xb8\xad");
    EXPECT_EQ(read->sections[0].table, table);
  }
}

TEST(ListingText, AnyOtherTextIsRefused) {
  for (const char *text :
       {"", "\n", "t\n", "t\n=", "t\n==\n", "\n\n", "t\n=\nh\n", "t\n=\n\n", "t\n=\n\n\n",
        "t\n=\n\nh\n\n", "t\n=\n\nh\na", "t\n=\n\nh\na \n", "t\n=\n\nh\n   \n",
        "t\n=\n\nh\na   b\n", "t\n=\n\nh\na\n--\n", "t\n=\n\nh\naa\n-\n", "t\n=\n\nh\na  b\n- -\n",
        "t\n=\n\nh\na  b\n-  -\n1 2\n", "t\n=\n\nh\r\na\n-\n\n"}) {
    EXPECT_FALSE(read_listing_text(text)) << text;
  }
}

/// Cells of letters and single blanks, sometimes empty or wide.
std::string cell(std::mt19937 &random) {
  constexpr const char *kPieces[] = {"a", "Zz", "\xe4\xb8\xad", "e\xcc\x81", "-",
                                     "=", "0",  "a b",          "\\x20"};
  std::string text;
  for (auto count = random() % 5; count > 0; --count)
    text += kPieces[random() % std::size(kPieces)];
  return text;
}

/// A table of full rows. No row is a rule; the first row and the first cells are not empty.
std::vector<TableRow> table(std::mt19937 &random) {
  size_t columns = 1 + random() % 4;
  std::vector<TableRow> rows(1 + random() % 5);
  for (TableRow &row : rows) {
    row.push_back("x" + cell(random));
    bool is_first = &row == &rows.front();
    while (row.size() < columns) {
      row.push_back((is_first ? "y" : "") + cell(random));
    }
  }
  return rows;
}

TEST(ListingText, RandomTablesSurvive) {
  std::mt19937 random(20261122);  // NOLINT(cert-msc51-cpp): the same tables in each run
  for (int i = 0; i < 5000; ++i) {
    std::vector<TableRow> rows = table(random);
    std::string text = listing_text({"title", {{"heading", rows, Rule::kBelowFirst}}});
    auto read = read_listing_text(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(read->sections[0].table, rows) << text;

    text =
        listing_text({"title", {{"heading", rows, Rule::kNone}, {"second", {{"x"}}, Rule::kNone}}});
    read = read_listing_text(text);
    ASSERT_TRUE(read) << text;
    ASSERT_EQ(read->sections.size(), 2u);
    EXPECT_EQ(listing_text(*read), text);
  }
}

}  // namespace

}  // namespace olt::test
