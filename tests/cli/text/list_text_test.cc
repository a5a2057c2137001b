#include "cli/text/list_text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/text/field_forms.h"

namespace olt::test {

namespace {

using olt::to_hex;
using olt::cli::BadValue;
using olt::cli::read_entries;
using olt::cli::read_vlan_ids;
using olt::cli::read_vlans;
using olt::cli::split_items;
using olt::cli::split_lines;
using Pairs = std::vector<std::pair<int, int>>;

const olt::catalog::Argument &entries() {
  return olt::catalog::find("add_authallowed_mac_loid")->arguments()[2];
}

Pairs pairs(const std::string &text) {
  Pairs found;
  for (const auto &node : read_vlans(split_items(text, ','), 32)) {
    found.emplace_back(node.vlan_first, node.vlan_second);
  }
  return found;
}

std::string entry_hex(const std::string &text) {
  return to_hex(read_entries(split_items(text, ';'), entries()));
}

template <typename Function>
std::string error_of(Function fn) {
  try {
    fn();
  } catch (const BadValue &bad) {
    return bad.what();
  }
  return "no error";
}

std::string vlan_error(const std::string &text, size_t longest = 0) {
  return error_of([&] { read_vlans(split_items(text, ','), longest); });
}

std::string entry_error(const std::string &text) {
  return error_of([&] { read_entries(split_items(text, ';'), entries()); });
}

TEST(ListText, SplitsWordsAndLines) {
  EXPECT_TRUE(split_items("", ',').empty());
  auto items = split_items("a, b ,", ',');
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[1].text, "b");
  EXPECT_EQ(items[2].place, "item 3");
  EXPECT_EQ(items[2].text, "");

  auto lines = split_lines("# comment\n\n  one \r\ntwo");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].place, "line 3");
  EXPECT_EQ(lines[0].text, "one");
  EXPECT_EQ(lines[1].place, "line 4");
  EXPECT_TRUE(split_lines("").empty());
}

TEST(ListText, ReadsVlansAndRanges) {
  EXPECT_EQ(pairs("10,20-25,1-4094,7-7"), (Pairs{{10, 0}, {20, 25}, {1, 4094}, {7, 7}}));
  EXPECT_EQ(pairs(""), Pairs{});
  EXPECT_EQ(read_vlan_ids(split_items("10,20-22", ',')), (std::vector<uint16_t>{10, 20, 21, 22}));
}

TEST(ListText, ReadsDescriptions) {
  std::string longest(32, 'd');
  auto nodes = read_vlans(split_items("10:up:link,20-25:" + longest + ",30:", ','), 32);
  ASSERT_EQ(nodes.size(), 3U);
  EXPECT_EQ(std::string(nodes[0].vlan_descr), "up:link");
  EXPECT_EQ(std::string(nodes[1].vlan_descr, 32), longest);
  EXPECT_EQ(nodes[2].vlan_descr[0], 0);
}

TEST(ListText, NamesTheVlanThatIsWrong) {
  EXPECT_EQ(vlan_error("1,0"), "item 2: '0' is not a VLAN id");
  EXPECT_EQ(vlan_error("4095"), "item 1: '4095' is not a VLAN id");
  EXPECT_EQ(vlan_error("65537"), "item 1: '65537' is not a VLAN id");
  EXPECT_EQ(vlan_error("1,,3"), "item 2: nothing is given");
  EXPECT_EQ(vlan_error("10,"), "item 2: nothing is given");
  EXPECT_EQ(vlan_error("-5"), "item 1: '-5' is a range with one end");
  EXPECT_EQ(vlan_error("10,20-"), "item 2: '20-' is a range with one end");
  EXPECT_EQ(vlan_error("-"), "item 1: '-' is a range with one end");
  EXPECT_EQ(vlan_error("10,20-:users", 32), "item 2: '20-' is a range with one end");
  EXPECT_EQ(vlan_error(":users", 32), "item 1: nothing is given");
  EXPECT_EQ(vlan_error("5-6-7"), "item 1: '6-7' is not a VLAN id");
  EXPECT_EQ(vlan_error("1,2,25-20"), "item 3: '25-20' ends before it begins");
  EXPECT_EQ(vlan_error("1,2:x"), "item 2: a description is not taken here");
  EXPECT_EQ(vlan_error("1:" + std::string(33, 'x'), 32), "item 1: the description has 33 bytes");
}

TEST(ListText, ReadsEntriesByField) {
  EXPECT_EQ(entry_hex("mac=02:00:00:00:00:01"), "020000000001" + std::string(76, '0'));
  EXPECT_EQ(entry_hex("loid=ab"), std::string(16, '0') + "6162" + std::string(68, '0'));
  EXPECT_EQ(entry_hex("password=cd mac=02:00:00:00:00:0a loid='a b'"),
            "02000000000a" + std::string(4, '0') + "612062" + std::string(42, '0') + "6364" +
                std::string(20, '0'));
  EXPECT_EQ(entry_hex("loid=" + std::string(24, 'l') + " password=" + std::string(12, 'p'))
                .substr(64 - 2),
            "6c707070707070707070707070");
  EXPECT_EQ(entry_hex("mac=02:00:00:00:00:01;mac=02:00:00:00:00:02").size(), 176U);
  EXPECT_EQ(entry_hex(std::string(88, 'a')), std::string(88, 'a'));
  EXPECT_EQ(entry_hex(""), "");
}

TEST(ListText, NamesTheEntryThatIsWrong) {
  EXPECT_EQ(entry_error("mac=02:00:00:00:00:01;mac=02:00"),
            "item 2: mac: '02:00' is not a MAC address");
  EXPECT_EQ(entry_error("loid=" + std::string(25, 'l')), "item 1: loid: 25 bytes given");
  EXPECT_EQ(entry_error("password=" + std::string(13, 'p')), "item 1: password: 13 bytes given");
  EXPECT_EQ(entry_error("lod=a"), "item 1: there is no field 'lod'");
  EXPECT_EQ(entry_error("loid=a loid=b"), "item 1: loid is given twice");
  EXPECT_EQ(entry_error("loid=a b"), "item 1: a word is not FIELD=VALUE");
  EXPECT_EQ(entry_error("loid='a"), "item 1: the line ends too early; expected a closing '");
  EXPECT_EQ(entry_error("0102"), "item 1: 2 bytes given");
  EXPECT_EQ(entry_error("site-17"), "item 1: neither FIELD=VALUE nor pairs of hex digits");
}

}  // namespace

}  // namespace olt::test
