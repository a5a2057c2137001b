// oltsnmp under the distribution's snmpd, with a simulated box: what its tools see.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "agent/objects.h"
#include "base/text.h"
#include "tests/agent/running_agent.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using agent::Column;
using agent::Oid;
using agent::SmiType;
using agent::Table;
using nlohmann::json;
using std::chrono::steady_clock;

class Snmp : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    running_ = new RunningAgent;
    running_->start_box();
    running_->start_snmpd();
    // Without polling, so that the tests ask first.
    running_->start_agent({"--writable", "--pace", "0"});
  }

  /// Also ends the agent, which must not have leaked.
  static void TearDownTestSuite() {
    EXPECT_EQ(running_->end_agent(SIGTERM), 0) << running_->log();
    delete running_;
  }

  static RunningAgent &running() { return *running_; }

  static Finished oltctl(const std::vector<std::string> &arguments) {
    Finished called = running().box().oltctl(arguments);
    EXPECT_EQ(called.status, 0) << called.errors;
    return called;
  }

  static size_t occurrences(const std::string &text) {
    const std::string log = running().log();
    size_t count = 0;
    for (size_t at = 0; (at = log.find(text, at)) != std::string::npos; ++at) ++count;
    return count;
  }

  /// The requests of a message type that the box has had.
  static uint64_t exchanges(uint16_t type) {
    json counters = json::parse(oltctl({"--json", "counters"}).output);
    for (const json &message : counters["counters"]["messages"]) {
      if (message["type"] == type) return message["exchanges"];
    }
    return 0;
  }

 private:
  static inline RunningAgent *running_;
};

std::string hex_of(const std::string &text) {
  return to_hex(as_bytes(text));
}

/// "02:00:00:00:00:01" as "020000000001".
std::string without_colons(std::string mac) {
  std::erase(mac, ':');
  return mac;
}

/// Bit 0 is port 1, the highest bit of the first octet.
std::string port_list(uint32_t ports) {
  Bytes octets(4);
  for (uint32_t port = 1; port <= 32; ++port) {
    if ((ports >> (port - 1) & 1) == 0) continue;
    octets[(port - 1) / 8] |= static_cast<uint8_t>(1U << (7 - (port - 1) % 8));
  }
  return to_hex(octets);
}

/// Little-endian ids as they are read; high octets first, without zeros, as they are expected.
std::string vlan_ids(const std::string &hex) {
  std::string ids;
  for (size_t at = 0; at < hex.size(); at += 4) {
    std::string id = hex.substr(at + 2, 2) + hex.substr(at, 2);
    if (id != "0000") ids += id;
  }
  return ids;
}

/// The value that oltctl shows in its raw form.
std::string expected(const Column &column, const json &field) {
  if (column.is_counted) {
    return std::to_string(field.get<std::string>().size() / 2 / column.field.record_size);
  }
  switch (column.type) {
    case SmiType::kMacAddress:
      return without_colons(field);
    case SmiType::kText:
      return hex_of(field);
    case SmiType::kPortList:
      return port_list(field);
    case SmiType::kVlanIds:
      return vlan_ids(field);
    case SmiType::kOctets:
      return field;
    default:
      return field.dump();
  }
}

/// The cells of a row, by the names of its fields.
void add_cells(Cells &cells, const Table &table, const json &row) {
  static const std::map<agent::IndexKind, const char *> kNames = {
      {agent::IndexKind::kSlot, "slot"},       {agent::IndexKind::kInterface, "interface"},
      {agent::IndexKind::kOnu, "onu"},         {agent::IndexKind::kPort, "port"},
      {agent::IndexKind::kLine, "line"},       {agent::IndexKind::kVlan, "vlan"},
      {agent::IndexKind::kProfile, "profile"}, {agent::IndexKind::kChannel, "number"}};
  std::string index;
  for (const agent::IndexPart &part : table.index) {
    const json &value = row.at(kNames.at(part.kind));
    if (part.kind != agent::IndexKind::kProfile) {
      index += "." + value.dump();
      continue;
    }
    std::string name = value;
    name.resize(32);
    for (char c : name) index += "." + std::to_string(static_cast<unsigned char>(c));
  }
  for (const Column &column : table.columns) {
    const json &field = row.at(column.field.name);
    std::string cell = "1.3.6.1.4.1.32473.1." + std::to_string(table.arc) + ".1." +
                       std::to_string(column.arc) + index;
    if (!field.is_array()) {
      cells[cell] = expected(column, field);
      continue;
    }
    size_t word = std::stoul(column.name.substr(column.name.find_last_not_of("0123456789") + 1));
    cells[cell] = field[word - 1].dump();
  }
}

/// Of the rows that oltctl shows, one a line.
Cells cells_of(const Table &table, const std::string &output) {
  Cells cells;
  std::istringstream rows(output);
  for (std::string row; std::getline(rows, row);) {
    add_cells(cells, table, json::parse(row).at("row"));
  }
  return cells;
}

TEST_F(Snmp, EveryCellIsWhatOltctlReads) {
  const std::string script = running().box().folder() + "/script";
  std::ofstream(script) << "create_iptv_profile basic\n"
                           "create_iptv_profile a-name-of-32-bytes-is-the-limit1\n"
                           "create_iptv_profile zz\n"
                           "add_iptv_channel basic number=7\n"
                           "add_iptv_channel basic number=300\n"
                           "add_iptv_channel zz number=1\n"
                           "add_ont_description 1/2/3 'Zürich, 3rd floor'\n"
                           "add_vlan_list 10,20-25\n"
                           "process_trunk_vlan slot=1 port=3 vlans=10,20-22 trunk_value=1\n"
                           "set_ont_port_policying ont=1/1/2:3 policing=1,2,3,4294967295\n"
                           "add_ont_port_muticastvlan ont=1/1/2:3 vlans=10,20-25\n"
                           "set_voip_linestatus ont=1/2/1:2 line_status=on\n"
                           "set_olt_auth_mode 1 2 loid\n";
  oltctl({"-f", script});
  size_t tables = 0;
  for (const Table &table : agent::enterprise_tables(catalog::Layout::box())) {
    const std::string reader = table.reader->name;
    if (table.is_scalar || table.stepper != nullptr) continue;
    Cells walked;
    Cells cells;
    // Some rows count seconds, which may change between the two readings.
    for (int attempt = 0; attempt < 5 && (cells.empty() || walked != cells); ++attempt) {
      if (attempt > 0) std::this_thread::sleep_for(1100ms);  // the cache
      walked = running().walk(".1." + std::to_string(table.arc));
      cells = cells_of(table, oltctl({"--raw", "--json", "walk", reader}).output);
    }
    EXPECT_FALSE(cells.empty()) << reader;
    EXPECT_EQ(walked, cells) << reader;
    ++tables;
  }
  EXPECT_EQ(tables, 20u);
}

TEST_F(Snmp, PortsHaveTheirRecords) {
  for (const std::string port : {"1", "4"}) {
    json record = json::parse(
        oltctl({"--raw", "--json", "get_snmp_olt_port_basic_info", "slot=1", "port=" + port})
            .output);
    EXPECT_EQ(running().get(".1.70.1.26.1." + port), "1");     // enabled
    EXPECT_EQ(running().get(".1.70.1.30.1." + port), "1000");  // Mbit/s
    EXPECT_NE(record.dump().find("\"link_speed\":1000"), std::string::npos) << record;
  }
  EXPECT_EQ(running().get(".1.171.1.19.1.2"), "128");  // RSTP priority
  EXPECT_EQ(running().get(".1.174.1.18.1.2"), "0");    // RSTP is off
  EXPECT_EQ(running().get(".1.70.1.26.1.5"), "NoSuchInstancecurrentlyexistsatthisOID");
}

TEST_F(Snmp, ScalarsAreWhatTheModulesSay) {
  oltctl({"set_snmp_systeminfo", "contact=noc", "name=olt-7", "location=Ulm", "services=78"});
  oltctl({"set_system_ipaddress", "address=192.0.2.7", "mask=255.255.255.0"});
  oltctl({"add_user_level", "name=operator", "password=secret", "level_a=1", "level_b=1"});
  std::this_thread::sleep_for(1s);  // what was read before may be so old
  EXPECT_EQ(running().get(".1.12.10.0"), "020000000001");
  EXPECT_EQ(running().get(".1.60.10.0"), hex_of("noc"));
  EXPECT_EQ(running().get(".1.60.74.0"), hex_of("olt-7"));
  EXPECT_EQ(running().get(".1.60.202.0"), "78");
  EXPECT_EQ(running().get(".1.58.10.0"), "192.0.2.7");
  EXPECT_EQ(running().get(".1.62.1.0"), "2");
  EXPECT_EQ(running().get(".1.61.10.0"), "0");
  // Communities are secrets.
  EXPECT_EQ(running().get(".1.57.10.0"), "NoSuchObjectavailableonthisagentatthisOID");
}

TEST_F(Snmp, GetNextFollowsTheOrderOfNames) {
  const std::vector<std::pair<std::string, std::string>> kSteps = {
      {".1.85", ".1.85.1.26.1.1.1"},
      {".1.85.0.9", ".1.85.1.26.1.1.1"},
      {".1.85.1", ".1.85.1.26.1.1.1"},
      {".1.85.1.3", ".1.85.1.26.1.1.1"},
      {".1.85.1.34.0", ".1.85.1.34.1.1.1"},
      {".1.85.1.34.1", ".1.85.1.34.1.1.1"},
      {".1.85.1.34.1.1", ".1.85.1.34.1.1.1"},
      {".1.85.1.34.1.1.0", ".1.85.1.34.1.1.1"},
      {".1.85.1.34.1.1.1", ".1.85.1.34.1.1.2"},
      {".1.85.1.34.1.1.1.7", ".1.85.1.34.1.1.2"},
      {".1.85.1.34.1.1.3.5", ".1.85.1.34.1.2.1"},
      {".1.85.1.34.1.1.4294967295", ".1.85.1.34.1.2.1"},
      {".1.85.1.34.1.2.3", ".1.85.1.38.1.1.1"},
      {".1.85.1.34.1.4294967295.1", ".1.85.1.38.1.1.1"},
      {".1.85.1.34.4294967295", ".1.85.1.38.1.1.1"},
      {".1.85.1.82.1.2.3", ".1.86.1.26.1.1.1"},
      {".1.85.1.99", ".1.86.1.26.1.1.1"},
      {".1.85.2", ".1.86.1.26.1.1.1"},
      {".1.92.1.26.1.1.1", ".1.92.1.26.1.1.1.1"},
      {".1.92.1.26.1.1.1.1", ".1.92.1.26.1.1.1.2"},
      {".1.92.1.26.1.1.1.2", ".1.92.1.26.1.1.2.1"},
      {".1.61", ".1.61.10.0"},
      {".1.61.10", ".1.61.10.0"},
      {".1.61.10.0", ".1.62.1.0"},
      {".1.61.10.0.1", ".1.62.1.0"},
  };
  for (const auto &[from, to] : kSteps) {
    Finished next = running().snmp("snmpgetnext", {}, {from});
    const std::string name = next.output.substr(0, next.output.find(' '));
    EXPECT_EQ(name, ".1.3.6.1.4.1.32473" + to) << "after " << from;
  }
  // All in one request, in a wild order.
  std::vector<std::string> from;
  std::string to;
  for (const auto &[before, after] : kSteps) from.insert(from.begin(), before);
  std::istringstream lines(running().snmp("snmpgetnext", {}, from).output);
  for (auto step = kSteps.rbegin(); step != kSteps.rend(); ++step) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, line.find(' ')), ".1.3.6.1.4.1.32473" + step->second);
  }
}

/// Names near that of a cell: shorter, longer, with other sub-identifiers.
Oid name_near(const Oid &cell, std::mt19937 &random) {
  constexpr size_t kRootSize = 7;
  constexpr size_t kLongestName = 128;
  Oid name = cell;
  const size_t place = kRootSize + random() % (name.size() - kRootSize);
  switch (random() % 7) {
    case 0:
      break;
    case 1:
      name.resize(place);
      break;
    case 2:
      name.insert(name.end(), kLongestName - name.size(), random() % 2 == 0 ? 0 : UINT32_MAX);
      break;
    case 3:
      name[place] = UINT32_MAX;
      break;
    case 4:
      name[place] = 0;
      break;
    case 5:
      name[place] += 1;
      break;
    default:
      name[place] -= name[place] == 0 ? 0U : 1U;
  }
  return name;
}

/// The names in the output of a tool, in its order.
std::vector<Oid> names_in(const std::string &output) {
  std::vector<Oid> names;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(".1.")) names.push_back(*agent::to_oid(line.substr(0, line.find(' '))));
  }
  return names;
}

std::vector<std::string> texts(const std::vector<Oid> &names) {
  std::vector<std::string> texts;
  for (const Oid &name : names) texts.push_back(agent::oid_text(name));
  return texts;
}

TEST_F(Snmp, AnyNamesInAnyOrderHaveTheirSuccessors) {
  std::vector<Oid> cells;
  for (const auto &[name, value] : running().walk("")) cells.push_back(*agent::to_oid(name));
  std::sort(cells.begin(), cells.end());
  ASSERT_GT(cells.size(), 1000u);
  std::mt19937 random(18);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same names each time
  for (int request = 0; request < 40; ++request) {
    std::vector<Oid> from;
    std::vector<Oid> to;
    while (from.size() < 25) {
      Oid name = name_near(cells[random() % cells.size()], random);
      auto next = std::upper_bound(cells.begin(), cells.end(), name);
      if (next == cells.end()) continue;
      from.push_back(std::move(name));
      to.push_back(*next);
    }
    const std::string output = running().snmp("snmpgetnext", {}, texts(from)).output;
    EXPECT_EQ(names_in(output), to) << testing::PrintToString(texts(from));
  }
}

TEST_F(Snmp, ColumnsMayBeAskedInAnyOrder) {
  const std::vector<std::string> from = {".1.97.1.22", ".1.85.1.34.1.1.2", ".1.95.1.10",
                                         ".1.97.1.10", ".1.85.1.34.1.1.2", ".1.91.1.26.1.2"};
  std::vector<Oid> cells;
  for (const auto &[name, value] : running().walk("")) cells.push_back(*agent::to_oid(name));
  std::sort(cells.begin(), cells.end());
  std::vector<size_t> at;
  for (const std::string &name : from) {
    auto next =
        std::upper_bound(cells.begin(), cells.end(), *agent::to_oid("1.3.6.1.4.1.32473" + name));
    at.push_back(static_cast<size_t>(next - cells.begin()));
  }
  for (size_t single : {0U, 1U, 5U}) {
    std::vector<Oid> expected;
    for (size_t i = 0; i < single; ++i) expected.push_back(cells[at[i]]);
    for (size_t repetition = 0; repetition < 16; ++repetition) {
      for (size_t i = single; i < at.size(); ++i) expected.push_back(cells[at[i] + repetition]);
    }
    const std::vector<std::string> options = {"-Cr16", "-Cn" + std::to_string(single)};
    EXPECT_EQ(names_in(running().snmp("snmpbulkget", options, from).output), expected) << single;
  }
}

TEST_F(Snmp, GetTakesWholeIndexesAlone) {
  for (const char *name : {".1.85.1.34", ".1.85.1.34.1.1", ".1.85.1.34.1.1.1.1", ".1.85.1.34.1.0.1",
                           ".1.85.1.34.1.4294967295.1",
                           ".1.85.1.34.4294967295.4294967295.4294967295", ".1.92.1.34.1.1.1.0",
                           ".1.164.1.46.98", ".1.164.1.46.98.300", ".1.61.10.1", ".1.61.10.0.0"}) {
    EXPECT_EQ(running().get(name), "NoSuchInstancecurrentlyexistsatthisOID") << name;
  }
  for (const char *name :
       {".1.85.1.1.1.1.1", ".1.85.1.35.1.1.1", ".1.85.2.34.1.1.1", ".1.61.11.0"}) {
    EXPECT_EQ(running().get(name), "NoSuchObjectavailableonthisagentatthisOID") << name;
  }
}

TEST_F(Snmp, WalksOfEveryKindSeeTheSame) {
  const std::string whole = running().snmp("snmpwalk", {}, {".1.92"}).output;
  EXPECT_GT(whole.size(), 1000u);
  for (const char *option : {"-Cr1", "-Cr7", "-Cr50", "-Cr2000", "-Cc"}) {
    EXPECT_EQ(running().snmp("snmpbulkwalk", {option}, {".1.92"}).output, whole) << option;
  }
  EXPECT_EQ(running().snmp("snmpwalk", {"-Cc"}, {".1.92"}).output, whole);
}

TEST_F(Snmp, IsReadWithSnmpv3) {
  const std::vector<std::string> user = {"-v3", "-l",  "authPriv",    "-u",           "reader",
                                         "-a",  "SHA", "-A",          "read-the-olt", "-x",
                                         "AES", "-X",  "hide-the-olt"};
  EXPECT_EQ(running().snmp("snmpwalk", user, {".1.92"}).output,
            running().snmp("snmpwalk", {}, {".1.92"}).output);
  std::vector<std::string> wrong = user;
  wrong.back() = "hide-the-OLT";
  wrong.emplace_back("-t1");
  EXPECT_NE(running().snmp("snmpget", wrong, {".1.12.10.0"}).status, 0);
}

TEST_F(Snmp, ReadsEachCellOnceByColumnAndEachRowOnceByRow) {
  constexpr uint64_t kRows = 2 * 3 * 4;
  std::this_thread::sleep_for(1100ms);
  uint64_t before = exchanges(96);
  EXPECT_EQ(running().walk(".1.96").size(), 4 * kRows);
  uint64_t by_column = exchanges(96) - before;
  EXPECT_GE(by_column, kRows);
  EXPECT_LE(by_column, kRows + 1) << "the rows, and that there is none after the last one";

  std::this_thread::sleep_for(1100ms);
  before = exchanges(96);
  std::vector<std::string> row = {".1.96.1.10", ".1.96.1.14", ".1.96.1.18", ".1.96.1.22"};
  EXPECT_EQ(running().snmp("snmpbulkget", {"-Cr24"}, row).status, 0);
  EXPECT_LE(exchanges(96) - before, kRows + 1);
}

TEST_F(Snmp, SetChangesWhatTheModulesHave) {
  EXPECT_EQ(running().snmp("snmpset", {}, {".1.70.1.26.1.2", "i", "0"}).status, 0);
  EXPECT_EQ(running().get(".1.70.1.26.1.2"), "0");
  EXPECT_NE(oltctl({"get_port_enable", "1", "2"}).output.find("off"), std::string::npos);
  EXPECT_EQ(running()
                .snmp("snmpset", {}, {".1.70.1.26.1.2", "i", "1", ".1.70.1.86.1.2", "u", "9"})
                .status,
            0);
  EXPECT_EQ(running().get(".1.70.1.26.1.2"), "1");
  EXPECT_EQ(running().get(".1.70.1.86.1.2"), "9");
  EXPECT_EQ(running().snmp("snmpset", {}, {".1.85.1.82.1.2.1", "s", "Hall 4"}).status, 0);
  EXPECT_EQ(running().get(".1.85.1.82.1.2.1"), hex_of("Hall 4"));
  EXPECT_EQ(running().snmp("snmpset", {}, {".1.96.1.18.1.2.1.2", "u", "77"}).status, 0);
  EXPECT_NE(oltctl({"get_ont_port_policying", "1/2/1:2"}).output.find("77"), std::string::npos);
}

TEST_F(Snmp, SetSaysWhatIsWrong) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> kWrong = {
      {{".1.70.1.26.1.2", "s", "x"}, "wrongType"},
      {{".1.70.1.26.1.2", "i", "2"}, "wrongValue"},
      {{".1.70.1.74.1.2", "i", "1"}, "notWritable"},  // link state
      {{".1.70.1.26.1.9", "i", "1"}, "noCreation"},   // no such port
      {{".1.85.1.82.1.1.1", "s", std::string(49, 'x')}, "wrongLength"},
      {{".1.96.1.9.1.2.1.2", "u", "77"}, "notWritable"},  // no such column
  };
  for (const auto &[words, error] : kWrong) {
    Finished set = running().snmp("snmpset", {}, words);
    EXPECT_NE(set.status, 0);
    EXPECT_NE(set.errors.find(error), std::string::npos) << words[0] << ": " << set.errors;
  }
}

TEST_F(Snmp, SetIsUndoneWhenAnotherValueIsRefused) {
  EXPECT_EQ(running().get(".1.70.1.86.1.1"), "0");
  oltctl({"fault", "add", "type=set_ont_port_loopback", "status=3"});
  Finished set =
      running().snmp("snmpset", {}, {".1.70.1.86.1.1", "u", "5", ".1.95.1.70.1.1.1.1", "u", "1"});
  EXPECT_NE(set.status, 0);
  EXPECT_EQ(running().get(".1.70.1.86.1.1"), "0");
  oltctl({"fault", "clear"});
}

TEST_F(Snmp, ASilentModuleFailsAloneAndAtOnce) {
  // Message type 174 is the only one of module 23 here; 171 is in front of it, at module 2.
  oltctl({"fault", "add", "type=174", "delay_ms=4000"});
  auto begin = steady_clock::now();
  EXPECT_NE(running().get(".1.174.1.18.1.1").find("genError"), std::string::npos);
  EXPECT_GT(steady_clock::now() - begin, 650ms);
  EXPECT_LT(steady_clock::now() - begin, 1s);
  begin = steady_clock::now();
  EXPECT_NE(running().get(".1.174.1.18.1.1").find("genError"), std::string::npos);
  EXPECT_EQ(running().walk(".1.171").size(), 5u * 4u) << "runs on into the silent table";
  EXPECT_EQ(running().get(".1.85.1.34.1.1.1"), "1");
  EXPECT_LT(steady_clock::now() - begin, 600ms);
  oltctl({"fault", "clear"});
  const auto deadline = steady_clock::now() + 20s;
  while (running().get(".1.174.1.18.1.1") != "0") {
    ASSERT_LT(steady_clock::now(), deadline);
    std::this_thread::sleep_for(100ms);
  }
  EXPECT_TRUE(running().waits_for("module rstp (23) answers again"));
}

/// Table 174 is read at module 23, but its rows are found by message type 75 at module 2.
TEST_F(Snmp, TheModuleThatFindsTheRowsOfATableIsTheSilentOne) {
  const size_t main = occurrences("module main (2) does not answer");
  const size_t rstp = occurrences("module rstp (23) does not answer");
  oltctl({"fault", "add", "type=75", "delay_ms=4000"});
  Finished next = running().snmp("snmpgetnext", {}, {".1.174.1.18"});
  EXPECT_NE((next.output + next.errors).find("genError"), std::string::npos) << next.output;
  oltctl({"fault", "clear"});
  EXPECT_TRUE(running().waits_for("module main (2) does not answer", main + 1));
  const size_t back = occurrences("module main (2) answers again");
  EXPECT_TRUE(running().waits_for("module main (2) answers again", back + 1));
  EXPECT_EQ(occurrences("module rstp (23) does not answer"), rstp) << running().log();
}

TEST_F(Snmp, AModuleThatRefusesOrDropsFailsAlone) {
  for (const char *action : {"status=5", "action=drop", "delay_ms=850"}) {
    oltctl({"fault", "add", "type=60", action});
    std::this_thread::sleep_for(1100ms);
    EXPECT_NE(running().get(".1.60.10.0").find("genError"), std::string::npos) << action;
    oltctl({"fault", "clear"});
    std::this_thread::sleep_for(300ms);  // a delayed answer is out
    EXPECT_EQ(running().get(".1.60.202.0"), "78") << action;
  }
}

TEST_F(Snmp, ManagersThatWalkAtOnceGetWhatOneGets) {
  const Cells alone = running().walk(".1.95");
  std::vector<Cells> walked(10);
  std::vector<std::thread> managers;
  for (Cells &cells : walked) {
    managers.emplace_back([&cells] { cells = running().walk(".1.95"); });
  }
  for (std::thread &manager : managers) manager.join();
  for (const Cells &cells : walked) EXPECT_EQ(cells, alone);
}

TEST_F(Snmp, TheMasterMayComeAndGo) {
  constexpr unsigned kRestarts = 50;
  const pid_t agent = running().agent();
  for (unsigned round = 0; round < kRestarts; ++round) {
    // It goes while it waits for answers, too.
    std::thread manager([] { running().snmp("snmpbulkwalk", {"-t0.1"}, {""}); });
    std::this_thread::sleep_for(5ms * (round % 10));
    running().kill_snmpd();
    running().start_snmpd();
    manager.join();
    const auto deadline = steady_clock::now() + 20s;
    while (running().get(".2.7.0") != std::to_string(round + 1) ||
           running().get(".1.85.1.34.1.1.1") != "1") {
      ASSERT_LT(steady_clock::now(), deadline) << running().log();
    }
  }
  EXPECT_EQ(waitpid(agent, nullptr, WNOHANG), 0) << "the same process all the time";
  EXPECT_EQ(occurrences("Failed to connect"), 0u);
  // Net-snmp's Unix transport can lose an address when its peer goes, which would be reported as a
  // leak at the end of this agent.
  running().end_agent(SIGKILL);
  running().start_agent();
}

TEST_F(Snmp, TheModulesMayComeAndGo) {
  constexpr unsigned kRestarts = 50;
  // Cells that are asked for once, so that the cache does not have them.
  unsigned cell = 0;
  auto next_cell = [&cell] {
    ++cell;
    return fmt::format(".1.{}.1.10.1.{}.{}.{}", 96 + cell / 24 % 5, 1 + cell / 12 % 2,
                       1 + cell / 4 % 3, 1 + cell % 4);
  };
  EXPECT_EQ(running().get(".2.7.0"), "0");
  const size_t lost = occurrences("module main (2) does not answer");
  for (unsigned round = 1; round <= kRestarts; ++round) {
    running().box().end(SIGKILL);
    EXPECT_NE(running().get(next_cell()).find("genError"), std::string::npos);
    running().start_box();
    const std::string value = running().get(next_cell());
    EXPECT_EQ(value.find_first_not_of("0123456789abcdef\n"), std::string::npos) << value;
    EXPECT_TRUE(running().waits_for("module main (2) answers again", lost + round));
  }
  EXPECT_EQ(occurrences("module main (2) does not answer"), lost + kRestarts) << running().log();
  EXPECT_EQ(running().get(".2.7.0"), "0");
}

/// The first cell of each table and group of scalars.
std::vector<std::string> first_cells(const RunningAgent &running) {
  std::vector<std::string> cells;
  for (const Table &table : agent::enterprise_tables(catalog::Layout::box())) {
    Finished next = running.snmp("snmpgetnext", {}, {".1." + std::to_string(table.arc)});
    cells.push_back(next.output.substr(0, next.output.find(' ')));
  }
  return cells;
}

TEST_F(Snmp, EveryTableFailsWithItsModuleAndComesBack) {
  const std::vector<std::string> cells = first_cells(running());
  ASSERT_EQ(cells.size(), 33u);
  for (const Table &table : agent::enterprise_tables(catalog::Layout::box())) {
    oltctl({"fault", "add", std::string("type=") + table.reader->name, "action=drop"});
  }
  std::this_thread::sleep_for(1100ms);  // the cache
  auto value = [](const std::string &cell) {
    Finished got = running().snmp("snmpget", {}, {cell.substr(1)});
    return got.status == 0 ? got.output : got.errors;
  };
  for (const std::string &cell : cells) {
    EXPECT_NE(value(cell).find("genError"), std::string::npos) << cell;
  }
  oltctl({"fault", "clear"});
  for (const std::string &cell : cells) {
    EXPECT_EQ(value(cell).find("genError"), std::string::npos) << cell;
  }
}

TEST_F(Snmp, SighupTakesTheNewConfiguration) {
  const std::string file = running().box().folder() + "/oltsnmp.conf";
  std::ofstream(file) << "writable=true\n";
  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  running().start_agent({"--config", file});
  EXPECT_EQ(running().snmp("snmpset", {}, {".1.70.1.86.1.3", "u", "3"}).status, 0);

  // A mistake does not end the service.
  std::ofstream(file) << "writeable=true\n";
  kill(running().agent(), SIGHUP);
  EXPECT_TRUE(running().waits_for("writeable"));
  EXPECT_EQ(running().snmp("snmpset", {}, {".1.70.1.86.1.3", "u", "4"}).status, 0);

  // Read-only, and in a context, which the community "inside" sees.
  std::ofstream(file) << "context=olt\n";
  size_t before = occurrences("subagent connected");
  kill(running().agent(), SIGHUP);
  EXPECT_TRUE(running().waits_for("subagent connected", before + 1));
  const std::vector<std::string> inside = {"-c", "inside", "-Ov"};
  const auto deadline = steady_clock::now() + 20s;
  while (running().snmp("snmpget", inside, {".2.7.0"}).output != "0\n") {
    ASSERT_LT(steady_clock::now(), deadline) << running().log();
  }
  EXPECT_EQ(running().get(".1.70.1.86.1.3"), "NoSuchObjectavailableonthisagentatthisOID");
  EXPECT_EQ(running().snmp("snmpget", inside, {".1.70.1.86.1.3"}).output, "4\n");
  Finished set = running().snmp("snmpset", {"-c", "inside"}, {".1.70.1.86.1.3", "u", "5"});
  EXPECT_NE(set.errors.find("notWritable"), std::string::npos) << set.errors;

  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  running().start_agent({"--writable"});
}

TEST_F(Snmp, EndsWhileACallHasNoAnswer) {
  oltctl({"fault", "add", "type=4", "action=silence"});
  std::this_thread::sleep_for(1100ms);  // the cache
  EXPECT_NE(running().get(".1.4.10.0").find("genError"), std::string::npos);
  const auto begin = steady_clock::now();
  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  EXPECT_LT(steady_clock::now() - begin, 3s);
  oltctl({"fault", "clear"});
  running().start_agent({"--writable"});
}

/// Of a group that does not exist, the platform would say so for each connection.
TEST_F(Snmp, KeepsThePlatformsLinesOutOfItsLog) {
  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  setenv("OLT_GROUP", "no-such-group", 1);
  running().start_agent({"--writable"});
  unsetenv("OLT_GROUP");
  EXPECT_NE(running().get(".1.70.1.86.1.3"), "");
  EXPECT_EQ(occurrences("no-such-group"), 0U) << running().log();
}

TEST_F(Snmp, TakesNoProcessorTimeWhenNobodyAsks) {
  auto used = [] {
    // "PID (NAME) STATE ...", with user's and system's ticks at places 14 and 15.
    std::ifstream stat("/proc/" + std::to_string(running().agent()) + "/stat");
    std::string word;
    for (int place = 1; place < 14; ++place) stat >> word;
    long user = -1;
    long system = -1;
    stat >> user >> system;
    return user + system;
  };
  EXPECT_FALSE(running().walk(".1.96").empty());
  std::this_thread::sleep_for(100ms);
  const long before = used();
  EXPECT_GE(before, 0);
  std::this_thread::sleep_for(1s);
  EXPECT_LE(used() - before, sysconf(_SC_CLK_TCK) / 20);
}

TEST_F(Snmp, MemoryStaysBelow32MiB) {
  std::ifstream status("/proc/" + std::to_string(running().agent()) + "/status");
  long kilobytes = 0;
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) kilobytes = std::stol(line.substr(6));
  }
  EXPECT_GT(kilobytes, 0);
#ifndef OLT_TEST_SANITIZED  // AddressSanitizer keeps what was freed
  EXPECT_LT(kilobytes, 32 * 1024);
#endif
}

}  // namespace

}  // namespace olt::test
