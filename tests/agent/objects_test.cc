#include "agent/objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "tests/support/folder.h"

namespace olt::test {

namespace {

using agent::Column;
using agent::SmiType;
using agent::Table;
using catalog::Layout;

const std::vector<Table> &tables() {
  static const std::vector<Table> tables = agent::enterprise_tables(Layout::box());
  return tables;
}

const Table &table(const std::string &name) {
  auto found = std::find_if(tables().begin(), tables().end(),
                            [&name](const Table &one) { return one.name == name; });
  if (found == tables().end()) throw std::runtime_error("no table " + name);
  return *found;
}

const Column &column(const std::string &table_name, const std::string &name) {
  const Table &of = table(table_name);
  auto found = std::find_if(of.columns.begin(), of.columns.end(),
                            [&name](const Column &one) { return one.name == name; });
  if (found == of.columns.end()) throw std::runtime_error("no column " + name);
  return *found;
}

std::string cell(const std::string &table_name, const std::string &name) {
  agent::Oid oid = table(table_name).entry(*agent::to_oid("1.3.6.1.4.1.32473"));
  oid.push_back(column(table_name, name).arc);
  return agent::oid_text(oid);
}

TEST(Objects, StandWhereMessageTypeAndOffsetSay) {
  EXPECT_EQ(cell("oltOnu", "oltOnuState"), "1.3.6.1.4.1.32473.1.85.1.34");
  EXPECT_EQ(cell("oltOnu", "oltOnuDescription"), "1.3.6.1.4.1.32473.1.85.1.82");
  EXPECT_EQ(cell("oltPort", "oltPortPortEnable"), "1.3.6.1.4.1.32473.1.70.1.26");
  EXPECT_EQ(cell("oltBase", "oltBaseMac"), "1.3.6.1.4.1.32473.1.12.10");
  EXPECT_EQ(cell("oltLink", "oltLinkDba5"), "1.3.6.1.4.1.32473.1.86.1.58");
  EXPECT_EQ(cell("oltUser", "oltUserCount"), "1.3.6.1.4.1.32473.1.62.1");
}

TEST(Objects, HaveTheTypesOfTheirFields) {
  EXPECT_EQ(column("oltOnu", "oltOnuMac").type, SmiType::kMacAddress);
  EXPECT_EQ(column("oltOnu", "oltOnuLoid").type, SmiType::kText);
  EXPECT_EQ(column("oltOnu", "oltOnuLoid").size, 24u);
  EXPECT_EQ(column("oltOnu", "oltOnuSeconds").units, "seconds");
  EXPECT_EQ(column("oltVlan", "oltVlanTaggedPorts").type, SmiType::kPortList);
  EXPECT_EQ(column("oltNetwork", "oltNetworkGateway").type, SmiType::kIpAddress);
  EXPECT_EQ(column("oltPort", "oltPortLinkSpeed").units, "Mbit/s");
  EXPECT_EQ(column("oltUniMulticast", "oltUniMulticastVlans").type, SmiType::kVlanIds);
  EXPECT_EQ(column("oltUniVlan", "oltUniVlanSettings").type, SmiType::kOctets);
  EXPECT_TRUE(column("oltWan", "oltWanConnections").is_counted);
}

TEST(Objects, NameValuesAsSmiWantsThem) {
  const Column &mode = column("oltPon", "oltPonAuthMode");
  ASSERT_EQ(mode.type, SmiType::kEnumeration);
  ASSERT_EQ(mode.labels.size(), 4u);
  EXPECT_EQ(mode.labels[3].value, 3);
  EXPECT_EQ(mode.labels[3].name, "macLoid");
  // 0 and two others have names, but every percentage between is a value, too.
  EXPECT_EQ(column("oltUpdate", "oltUpdateProgress").type, SmiType::kUnsigned32);
}

TEST(Objects, IndexesNameTheRowInRequestAndReply) {
  const Table &uni = table("oltUniPolicing");
  ASSERT_EQ(uni.index.size(), 4u);
  EXPECT_EQ(uni.index[3].name, "oltUniPolicingPort");
  EXPECT_EQ(uni.index[3].request_offset, 16u);
  EXPECT_EQ(uni.index[3].reply_offset, 16u);
  EXPECT_EQ(uni.record, 1u);
  const Table &port = table("oltUniPort");
  EXPECT_EQ(port.index[3].request_offset, 16u);
  EXPECT_EQ(port.index[3].reply_offset, 12u);
  EXPECT_EQ(table("oltIptvChannel").index_length(), 33u);
  EXPECT_EQ(table("oltRstpState").index[1].request_offset, 4u);
  EXPECT_EQ(table("oltRstpState").index[1].step_offset, 8u);
  EXPECT_EQ(std::string(table("oltRstpState").stepper->name), "process_snmp_oltbasicport");
  EXPECT_EQ(table("oltRstpState").reader->address.module, 23);
}

TEST(Objects, AreWritableWhereASetterTakesThem) {
  const Column &enable = column("oltPort", "oltPortPortEnable");
  ASSERT_NE(enable.setter, nullptr);
  EXPECT_STREQ(enable.setter->name, "set_snmp_olt_port_basic_info");
  EXPECT_EQ(enable.setter_argument, 0u);
  EXPECT_EQ(enable.setter_offset, 0u);
  EXPECT_EQ(column("oltPort", "oltPortLinkState").setter, nullptr);
  const Column &description = column("oltOnu", "oltOnuDescription");
  ASSERT_NE(description.setter, nullptr);
  EXPECT_EQ(description.setter_argument, 1u);
  EXPECT_EQ(description.setter_offset, 72u);
  const Column &info = column("oltUniPort", "oltUniPortInfo3");
  EXPECT_EQ(info.field.offset, 24u);
  EXPECT_EQ(info.setter_offset, 16u);
}

TEST(Objects, HaveNamesAndPlacesOfTheirOwn) {
  std::set<std::string> names;
  for (const Table &one : tables()) {
    EXPECT_TRUE(names.insert(one.name).second) << one.name;
    EXPECT_FALSE(one.reader->keeps_reply) << one.name;
    std::set<uint32_t> arcs;
    for (const agent::IndexPart &part : one.index) {
      EXPECT_TRUE(names.insert(part.name).second) << part.name;
      EXPECT_TRUE(arcs.insert(part.arc).second) << part.name;
    }
    for (const Column &of : one.columns) {
      EXPECT_TRUE(names.insert(of.name).second) << of.name;
      EXPECT_TRUE(arcs.insert(of.arc).second) << of.name;
      EXPECT_LE(of.name.size(), 64u);
      EXPECT_FALSE(of.field.secret) << of.name;
    }
  }
  EXPECT_EQ(tables().size(), 33u);
}

TEST(Objects, AreInTheDocument) {
  const std::string page = read_file(OLT_DOCS "/snmp.md");
  for (const Table &one : tables()) {
    const std::string line = "| " + std::to_string(one.arc) + " | " + one.name;
    size_t at = page.find(line);
    ASSERT_NE(at, std::string::npos) << line;
    const std::string rest = page.substr(at, page.find('\n', at) - at);
    EXPECT_NE(rest.find(std::string("`") + one.reader->name + "`"), std::string::npos) << rest;
  }
  for (const agent::Notification &one : agent::notifications()) {
    const std::string line = "| " + std::to_string(one.arc) + " | " + one.name;
    EXPECT_NE(page.find(line), std::string::npos) << line;
  }
  for (const agent::AgentScalar &one : agent::agent_scalars()) {
    const std::string line = "| " + std::to_string(one.arc) + " | " + one.name;
    EXPECT_NE(page.find(line), std::string::npos) << line;
  }
}

TEST(Objects, OfNotificationsAreThere) {
  std::set<std::string> names = {agent::module_object().name};
  for (const Table &one : tables()) {
    for (const Column &of : one.columns) names.insert(of.name);
  }
  for (const agent::Notification &one : agent::notifications()) {
    EXPECT_TRUE(names.contains(one.object)) << one.object;
  }
}

TEST(Objects, OfALayoutThatDoesNotSayHowRowsAreFoundAreNoTables) {
  for (const Table &one : agent::enterprise_tables(Layout::contract())) {
    EXPECT_TRUE(one.is_scalar) << one.name;
  }
}

TEST(Oid, IsReadWithAndWithoutADotInFront) {
  EXPECT_EQ(agent::to_oid("1.3.6.1"), (agent::Oid{1, 3, 6, 1}));
  EXPECT_EQ(agent::to_oid(".1.4294967295"), (agent::Oid{1, 4294967295u}));
  for (const char *text : {"", ".", "1.", "1..2", "1.x", "1.4294967296", "-1", "1.3 "}) {
    EXPECT_EQ(agent::to_oid(text), std::nullopt) << text;
  }
}

}  // namespace

}  // namespace olt::test
