// How two listings differ.
#include "cli/compare/listings.h"

#include <gtest/gtest.h>

#include <string>

namespace olt::test {
namespace {

const std::string kVlans =
    "VLANs of olt\n"
    "============\n"
    "\n"
    "2 VLANs\n"
    "VLAN  Ports  Description\n"
    "----  -----  -----------\n"
    "1     1/1-4  default\n"
    "10    -      uplink\n";

std::string replaced(std::string text, const std::string &old, const std::string &by) {
  size_t at = text.find(old);
  EXPECT_NE(at, std::string::npos) << old;
  return text.replace(at, old.size(), by);
}

/// A line for each.
std::string differences(const std::string &recorded, const std::string &now) {
  std::string lines;
  for (const auto &difference : cli::listing_differences(recorded, now)) {
    lines += difference.field;
    if (difference.item > 0) lines += " of item " + std::to_string(difference.item);
    lines += ": " + difference.recorded.text + " -> " + difference.now.text + '\n';
  }
  return lines;
}

TEST(ListingDifferences, AreNoneBetweenEqualListings) {
  EXPECT_EQ(differences(kVlans, kVlans), "");
  EXPECT_EQ(differences("", ""), "");
  EXPECT_EQ(differences("anything", "anything"), "");
}

TEST(ListingDifferences, NameTitleHeadingRowAndColumn) {
  std::string now = replaced(kVlans, "VLANs of olt\n============", "VLANs of lab\n============");
  EXPECT_EQ(differences(kVlans, now), "listing.title: VLANs of olt -> VLANs of lab\n");
  now = replaced(kVlans, "10    -      uplink\n", "10    -\n20    1/2    uplink\n");
  EXPECT_EQ(differences(kVlans, replaced(now, "2 VLANs", "3 VLANs")),
            "listing.heading of item 1: 2 VLANs -> 3 VLANs\n"
            "listing.10.Description: uplink -> ''\n"
            "listing.20: none -> 20  1/2  uplink\n");
}

TEST(ListingDifferences, FindRowsByTheirFirstCell) {
  std::string now = replaced(kVlans, "1     1/1-4  default\n", "2     -      -\n");
  EXPECT_EQ(differences(kVlans, now),
            "listing.1: 1  1/1-4  default -> none\n"
            "listing.2: none -> 2  -  -\n");
  std::string none = kVlans.substr(0, kVlans.find("1     1/1-4"));
  EXPECT_EQ(differences(none, replaced(kVlans, "1     1/1-4  default\n", "")),
            "listing.10: none -> 10  -  uplink\n");
}

/// First cells that are there twice, or that the other table has nowhere, such as times.
TEST(ListingDifferences, TakeRowsInOrderWhereTheFirstCellFindsNone) {
  std::string log =
      "Log\n"
      "===\n"
      "\n"
      "Events\n"
      "Time  Event\n"
      "----  -------\n"
      "1 s   started\n";
  EXPECT_EQ(differences(log, replaced(log, "1 s   started", "2 s   stopped")),
            "listing.Time of item 1: 1 s -> 2 s\n"
            "listing.Event of item 1: started -> stopped\n");
  EXPECT_EQ(differences(log + "1 s   saved\n", log + "1 s   stopped\n1 s   saved\n"),
            "listing.Event of item 2: saved -> stopped\n"
            "listing.row of item 3: none -> 1 s  saved\n");
}

TEST(ListingDifferences, NameRowsOfTablesWithoutColumns) {
  std::string state =
      "Module\n"
      "======\n"
      "\n"
      "State\n"
      "Uptime  1 d  2 h\n"
      "Name    olt\n";
  EXPECT_EQ(differences(state, replaced(state, "Uptime  1 d  2 h", "Uptime  1 d  3 h")),
            "listing.Uptime: 1 d  2 h -> 1 d  3 h\n");
}

TEST(ListingDifferences, CompareOnlyRowsWithTheSameColumns) {
  std::string now = replaced(replaced(kVlans, "Ports", "Lines"), "1/1-4", "1/2-4");
  EXPECT_EQ(differences(kVlans, now),
            "listing.columns of item 1: VLAN  Ports  Description -> VLAN  Lines  Description\n");
  EXPECT_EQ(differences(kVlans, kVlans + "\nAlarms\nPort  1/1\n"),
            "listing.heading of item 2: none -> Alarms\n");
}

TEST(ListingDifferences, OfOtherTextsAreLines) {
  EXPECT_EQ(differences("a\nb\nc\n", "a\nx\nb\nc\n"), "listing.line of item 2: none -> x\n");
  EXPECT_EQ(differences("a\nb\nb\nc\n", "a\nb\nc\n"), "listing.line of item 3: b -> none\n");
  EXPECT_EQ(differences("a\nb\nc", "a\n\x1b[31m\nc"), "listing.line of item 2: b -> \\x1b[31m\n");
  EXPECT_EQ(differences(kVlans, "gone\n").substr(0, 50),
            "listing.line of item 1: VLANs of olt -> gone\nlisti");
  EXPECT_EQ(differences("", "a\n\n"),
            "listing.line of item 1: none -> a\n"
            "listing.line of item 2: none -> ''\n");
}

}  // namespace
}  // namespace olt::test
