// Standard objects from the bytes of records, as literals.

#include "agent/standard_objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace olt::test {

namespace {

using agent::Key;
using agent::StandardRows;
using agent::Table;
using catalog::Layout;

/// The values of the columns, by their OIDs: numbers, octets in hex.
using Values = std::map<std::string, std::string>;

Values values(const std::string &name, size_t part, const Key &row, const std::string &hex) {
  static const std::vector<Table> tables = agent::standard_tables(Layout::box());
  Values values;
  for (const Table &of : tables) {
    if (of.name != name) continue;
    const auto &rows = dynamic_cast<const StandardRows &>(*of.rows);
    Bytes record = rows.converted(rows.parts().at(part), {row, *from_hex(hex)});
    for (const agent::Column &column : of.columns) {
      agent::Oid oid = of.entry({});
      oid.push_back(column.arc);
      agent::Value value = agent::value_of(column, record);
      values[agent::oid_text(oid)] =
          agent::is_number(column.type) ? std::to_string(value.number) : to_hex(value.octets);
    }
  }
  return values;
}

TEST(StandardObjects, BridgeHasTheAddressOfTheOlt) {
  EXPECT_EQ(values("dot1dBase", 0, {0}, "02005e10ff01"),
            (Values{{"1.3.6.1.2.1.17.1.1", "02005e10ff01"}}));
}

TEST(StandardObjects, TimesOfTheBridgeAreHundredthsOfSeconds) {
  // On, RSTP, priority 4096, 20 s, 2 s, 15 s, hold count 6.
  const std::string rest(44, '0');
  EXPECT_EQ(values("dot1dStp", 0, {0}, "01020010140002000f0006" + rest),
            (Values{{"1.3.6.1.2.1.17.2.1", "3"},
                    {"1.3.6.1.2.1.17.2.2", "4096"},
                    {"1.3.6.1.2.1.17.2.12", "2000"},
                    {"1.3.6.1.2.1.17.2.13", "200"},
                    {"1.3.6.1.2.1.17.2.14", "1500"},
                    {"1.3.6.1.2.1.17.2.16", "2"},
                    {"1.3.6.1.2.1.17.2.17", "6"}}));
  Values stp = values("dot1dStp", 0, {0}, "0100ffff2800010004000a" + rest);
  EXPECT_EQ(stp["1.3.6.1.2.1.17.2.2"], "65535");
  EXPECT_EQ(stp["1.3.6.1.2.1.17.2.12"], "4000");
  EXPECT_EQ(stp["1.3.6.1.2.1.17.2.16"], "0");
  // A version that has no name.
  EXPECT_EQ(values("dot1dStp", 0, {0}, "0107001014000200040006" + rest)["1.3.6.1.2.1.17.2.1"], "1");
}

/// Slot 1, port 3, active, designated, then state, priority, path cost, and the rest.
std::string brief(const std::string &state, const std::string &cost) {
  return "01000000030000000100000002000000" + state + "80000000" + cost +
         "00800000"
         "00000000"
         "09000000";
}

TEST(StandardObjects, PortsOfTheBridgeHaveTheirStates) {
  EXPECT_EQ(values("dot1dStpPort", 0, {1, 3}, brief("03000000", "204e0000")),
            (Values{{"1.3.6.1.2.1.17.2.15.1.1", "3"},
                    {"1.3.6.1.2.1.17.2.15.1.2", "128"},
                    {"1.3.6.1.2.1.17.2.15.1.3", "5"},
                    {"1.3.6.1.2.1.17.2.15.1.5", "20000"},
                    {"1.3.6.1.2.1.17.2.15.1.11", "20000"}}));
  auto state = [](const std::string &word) {
    return values("dot1dStpPort", 0, {1, 3}, brief(word, "204e0000"))["1.3.6.1.2.1.17.2.15.1.3"];
  };
  EXPECT_EQ(state("00000000"), "1");  // down: disabled
  EXPECT_EQ(state("01000000"), "2");  // discarding: blocking
  EXPECT_EQ(state("02000000"), "4");  // learning
  // 200,000: more than dot1dStpPortPathCost holds.
  Values costly = values("dot1dStpPort", 0, {1, 3}, brief("03000000", "400d0300"));
  EXPECT_EQ(costly["1.3.6.1.2.1.17.2.15.1.5"], "65535");
  EXPECT_EQ(costly["1.3.6.1.2.1.17.2.15.1.11"], "200000");
}

TEST(StandardObjects, SettingsOfBridgePortsAreTruthValues) {
  const std::string rest(22, '0');
  // Slot 1, port 2, on, priority 128, path cost 0, edge, not point to point.
  EXPECT_EQ(values("dot1dStpExtPort", 0, {1, 2}, "01000000020000000180000000000100" + rest),
            (Values{{"1.3.6.1.2.1.17.2.19.1.2", "1"},
                    {"1.3.6.1.2.1.17.2.19.1.4", "1"},
                    {"1.3.6.1.2.1.17.2.19.1.6", "0"}}));
  EXPECT_EQ(values("dot1dStpExtPort", 0, {1, 2}, "010000000200000001800a0000000001" + rest),
            (Values{{"1.3.6.1.2.1.17.2.19.1.2", "2"},
                    {"1.3.6.1.2.1.17.2.19.1.4", "0"},
                    {"1.3.6.1.2.1.17.2.19.1.6", "10"}}));
}

TEST(StandardObjects, PortListsBeginWithTheMostSignificantBit) {
  // VLAN 10, "ab", tagged ports 1 and 32, untagged ports 2 and 9.
  const std::string name = "6162" + std::string(60, '0');
  EXPECT_EQ(values("dot1qVlanStatic", 0, {10},
                   "020000000a000000" + name +
                       "01000080020100000400"
                       "0000"),
            (Values{{"1.3.6.1.2.1.17.7.1.4.3.1.1", "6162"},
                    {"1.3.6.1.2.1.17.7.1.4.3.1.2", "c0800001"},
                    {"1.3.6.1.2.1.17.7.1.4.3.1.4", "40800000"},
                    {"1.3.6.1.2.1.17.7.1.4.3.1.5", "1"}}));
}

/// Slot 1, port 3, and four words.
std::string port(const std::string &words) {
  return "020000000100000003000000" + words + std::string(40, '0');
}

TEST(StandardObjects, DuplexIsThatOfTheLink) {
  auto duplex = [](const std::string &word) {
    return values("dot3Stats", 0, {1, 3},
                  port("0100000001000000e8030000" + word))["1.3.6.1.2.1.10.7.2.1.19"];
  };
  EXPECT_EQ(duplex("00000000"), "1");
  EXPECT_EQ(duplex("01000000"), "2");
  EXPECT_EQ(duplex("02000000"), "3");
  EXPECT_EQ(duplex("07000000"), "1");
}

TEST(StandardObjects, InterfacesAreOfThreeKinds) {
  // Enabled, up, 10,000 Mbit/s, full.
  EXPECT_EQ(values("if", 0, {1, 3}, port("01000000010000001027000002000000")),
            (Values{{"1.3.6.1.2.1.2.2.1.1", "1003"},
                    {"1.3.6.1.2.1.2.2.1.2", "45746865726e657420706f727420312f33"},
                    {"1.3.6.1.2.1.2.2.1.3", "6"},
                    {"1.3.6.1.2.1.2.2.1.5", "4294967295"},
                    {"1.3.6.1.2.1.2.2.1.7", "1"},
                    {"1.3.6.1.2.1.2.2.1.8", "1"}}));
  Values off = values("if", 0, {1, 3}, port("00000000000000006400000001000000"));
  EXPECT_EQ(off["1.3.6.1.2.1.2.2.1.5"], "100000000");
  EXPECT_EQ(off["1.3.6.1.2.1.2.2.1.7"], "2");
  EXPECT_EQ(off["1.3.6.1.2.1.2.2.1.8"], "2");
  Values pon = values("if", 1, {1, 2}, std::string(120, '0'));
  EXPECT_EQ(pon["1.3.6.1.2.1.2.2.1.1"], "100001002");
  EXPECT_EQ(pon["1.3.6.1.2.1.2.2.1.2"], "504f4e20696e7465726661636520312f32");
  EXPECT_EQ(pon["1.3.6.1.2.1.2.2.1.8"], "4");
  EXPECT_EQ(values("ifX", 0, {1, 3}, port("01000000010000001027000002000000")),
            (Values{{"1.3.6.1.2.1.31.1.1.1.1", "657468312f33"},
                    {"1.3.6.1.2.1.31.1.1.1.15", "10000"},
                    {"1.3.6.1.2.1.31.1.1.1.18", ""}}));
}

/// ONU 1/2/3 with that state, and the description "hall".
std::string onu(const std::string &state) {
  return "01000000020000000300000000000000"
         "022002000301"
         "0000" +
         state + std::string(88, '0') + "68616c6c" + std::string(144, '0');
}

TEST(StandardObjects, OnusAreInterfacesWithAnMpcpState) {
  EXPECT_EQ(values("dot3MpcpControl", 0, {1, 2, 3}, onu("01000000")),
            (Values{{"1.3.6.1.2.1.155.1.1.1.1.1", "1"},
                    {"1.3.6.1.2.1.155.1.1.1.1.2", "1"},
                    {"1.3.6.1.2.1.155.1.1.1.1.3", "1"},
                    {"1.3.6.1.2.1.155.1.1.1.1.6", "022002000301"},
                    {"1.3.6.1.2.1.155.1.1.1.1.7", "3"}}));
  Values away = values("dot3MpcpControl", 0, {1, 2, 3}, onu("02000000"));
  EXPECT_EQ(away["1.3.6.1.2.1.155.1.1.1.1.1"], "2");
  EXPECT_EQ(away["1.3.6.1.2.1.155.1.1.1.1.2"], "1");
  EXPECT_EQ(away["1.3.6.1.2.1.155.1.1.1.1.7"], "1");
  Values blocked = values("dot3MpcpControl", 0, {1, 2, 3}, onu("03000000"));
  EXPECT_EQ(blocked["1.3.6.1.2.1.155.1.1.1.1.1"], "2");
  EXPECT_EQ(blocked["1.3.6.1.2.1.155.1.1.1.1.2"], "2");
  EXPECT_EQ(blocked["1.3.6.1.2.1.155.1.1.1.1.7"], "1");
  EXPECT_EQ(values("ifX", 2, {1, 2, 3}, onu("01000000"))["1.3.6.1.2.1.31.1.1.1.18"], "68616c6c");
  Values interface = values("if", 2, {1, 2, 3}, onu("03000000"));
  EXPECT_EQ(interface["1.3.6.1.2.1.2.2.1.1"], "1010200003");
  EXPECT_EQ(interface["1.3.6.1.2.1.2.2.1.7"], "2");
  EXPECT_EQ(interface["1.3.6.1.2.1.2.2.1.8"], "2");
}

TEST(StandardObjects, EntitiesAreTheBoxItsInterfacesAndOnus) {
  Values box = values("entPhysical", 0, {0}, "020000000001");
  EXPECT_EQ(box["1.3.6.1.2.1.47.1.1.1.1.4"], "0");
  EXPECT_EQ(box["1.3.6.1.2.1.47.1.1.1.1.5"], "3");
  EXPECT_EQ(box["1.3.6.1.2.1.47.1.1.1.1.6"], "-1");
  Values pon = values("entPhysical", 1, {1, 2}, std::string(120, '0'));
  EXPECT_EQ(pon["1.3.6.1.2.1.47.1.1.1.1.4"], "1");
  EXPECT_EQ(pon["1.3.6.1.2.1.47.1.1.1.1.5"], "10");
  EXPECT_EQ(pon["1.3.6.1.2.1.47.1.1.1.1.6"], "2");
  EXPECT_EQ(pon["1.3.6.1.2.1.47.1.1.1.1.7"], "706f6e312f32");
  Values far = values("entPhysical", 2, {1, 2, 3}, onu("01000000"));
  EXPECT_EQ(far["1.3.6.1.2.1.47.1.1.1.1.4"], "0");
  EXPECT_EQ(far["1.3.6.1.2.1.47.1.1.1.1.5"], "3");
}

TEST(StandardObjects, AreThoseThatTheLayoutNames) {
  std::vector<std::string> names;
  for (const Table &one : agent::standard_tables(Layout::contract())) names.push_back(one.name);
  EXPECT_EQ(names, (std::vector<std::string>{"dot1dBase", "entPhysical"}));
  Layout other("other", Layout::box());
  other.set_fields("olt_rstp_bridge", {{.name = "max_age",
                                        .offset = 0,
                                        .width = 2,
                                        .kind = catalog::FieldKind::kNumber,
                                        .unit = "ms"},
                                       {"rest", 2, 31, catalog::FieldKind::kBytes}});
  for (const Table &one : agent::standard_tables(other)) EXPECT_NE(one.name, "dot1dStp");
}

TEST(StandardObjects, HaveRegionsOfTheirOwn) {
  std::set<agent::Oid> regions;
  for (const Table &one : agent::standard_tables(Layout::box())) {
    EXPECT_TRUE(regions.insert(one.region({})).second) << one.name;
  }
  EXPECT_TRUE(regions.contains({1, 3, 6, 1, 2, 1, 17, 2, 14}));
  EXPECT_TRUE(regions.contains({1, 3, 6, 1, 2, 1, 17, 2, 15}));
  const agent::Oid *before = nullptr;
  for (const agent::Oid &region : regions) {
    bool is_inside = before != nullptr && region.size() >= before->size() &&
                     std::equal(before->begin(), before->end(), region.begin());
    EXPECT_FALSE(is_inside) << agent::oid_text(region);
    before = &region;
  }
}

TEST(Numbering, CountsAsDocumented) {
  EXPECT_EQ(agent::kPortNumbers.number_of({1, 4}), 1'004u);
  EXPECT_EQ(agent::kPonNumbers.number_of({2, 16}), 100'002'016u);
  EXPECT_EQ(agent::kOnuNumbers.number_of({1, 16, 1024}), 1'011'601'024u);
  EXPECT_EQ(agent::kOnuNumbers.number_of({99, 99, 99'999}), 1'999'999'999u);
  EXPECT_EQ(agent::kBridgePortNumbers.number_of({1, 4}), 4u);
  EXPECT_EQ(agent::kBridgePortNumbers.number_of({2, 1}), 1'001u);
  EXPECT_EQ(agent::kPortNumbers.number_of({1, 1000}), std::nullopt);
  EXPECT_EQ(agent::kPortNumbers.number_of({100, 1}), std::nullopt);
  EXPECT_EQ(agent::kPortNumbers.number_of({1, 0}), std::nullopt);
  EXPECT_EQ(agent::kPortNumbers.number_of({1}), std::nullopt);
}

TEST(Numbering, FindsThePlaceOfANumber) {
  EXPECT_EQ(agent::kOnuNumbers.row_at(0), Key{});
  EXPECT_EQ(agent::kOnuNumbers.row_at(999'999'999), Key{});
  EXPECT_EQ(agent::kOnuNumbers.row_at(1'010'200'003), (Key{1, 2, 3}));
  EXPECT_EQ(agent::kOnuNumbers.row_at(1'010'200'000), (Key{1, 2, 0}));
  EXPECT_EQ(agent::kOnuNumbers.row_at(2'000'000'000), std::nullopt);
  EXPECT_EQ(agent::kOnuNumbers.row_at(UINT32_MAX), std::nullopt);
  EXPECT_EQ(agent::kPortNumbers.row_at(1'003), (Key{1, 3}));
  EXPECT_EQ(agent::kBridgePortNumbers.row_at(3), (Key{1, 3}));
  EXPECT_EQ(agent::kBridgePortNumbers.row_at(0), (Key{1, 0}));
}

}  // namespace

}  // namespace olt::test
