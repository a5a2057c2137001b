#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <tuple>

#include "catalog/row.h"
#include "tests/cli/program.h"

namespace olt::test {

namespace {

using olt::catalog::Argument;
using olt::catalog::Direction;
using olt::catalog::families;
using olt::catalog::Family;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::find;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::catalog::Role;
using olt::catalog::wire_secrets;
using Names = std::multiset<std::string>;

template <typename Function>
void each_operation(Function fn) {
  for (const Family &family : families()) {
    for (const Operation &operation : family.operations) fn(operation);
  }
}

Names exported_names() {
  Finished nm = run({"nm", "-D", "--defined-only", LIBOLTMGMT}, {});
  EXPECT_EQ(nm.status, 0) << nm.errors;
  Names names;
  std::istringstream lines(nm.output);
  for (std::string address, type, name; lines >> address >> type >> name;) {
    if (type == "T") names.insert(name.substr(0, name.find('@')));
  }
  return names;
}

TEST(Catalog, HasARowForEachExportedFunctionAndNoOther) {
  Names rows;
  each_operation([&rows](const Operation &operation) { rows.insert(operation.name); });
  Names exported = exported_names();
  EXPECT_GE(exported.size(), 182U);
  EXPECT_EQ(rows, exported);
}

TEST(Catalog, FindsByName) {
  ASSERT_NE(find("Cl_Set_SntpCfg_apply"), nullptr);
  EXPECT_EQ(find("Cl_Set_SntpCfg_apply")->address.message_type, 52);
  EXPECT_EQ(find("cl_set_sntpcfg_apply"), nullptr);
}

TEST(Catalog, KnowsWhereOperationsSend) {
  EXPECT_EQ(find("get_olt_mac")->address.module, 2);
  EXPECT_EQ(find("get_olt_support_oam")->address.module, 18);
  EXPECT_EQ(find("set_system_loglevel")->address.module, 22);
  EXPECT_EQ(find("set_system_loglevel")->address.second_module, 2);
  EXPECT_EQ(find("set_debug_enable")->address.module, 0);
}

TEST(Catalog, EverySummaryIsOneLineThatFitsATerminal) {
  each_operation([](const Operation &operation) {
    std::string summary = operation.summary;
    EXPECT_FALSE(summary.empty()) << operation.name;
    EXPECT_LE(summary.size(), 60U) << operation.name;
    EXPECT_EQ(summary.find('\n'), std::string::npos) << operation.name;
  });
}

TEST(Catalog, EverySecretIsHiddenOnTheWire) {
  auto has_secret = [](const Argument &argument) {
    return argument.secret || std::any_of(argument.fields.begin(), argument.fields.end(),
                                          [](const Field &field) { return field.secret; });
  };
  size_t secrets = 0;
  each_operation([&](const Operation &operation) {
    auto arguments = operation.arguments();
    if (std::none_of(arguments.begin(), arguments.end(), has_secret)) return;
    ++secrets;
    auto hidden = wire_secrets();
    EXPECT_TRUE(std::any_of(hidden.begin(), hidden.end(), [&](const auto &secret) {
      return secret.message_type == operation.address.message_type;
    })) << operation.name;
  });
  EXPECT_EQ(secrets, 14U);
}

TEST(Catalog, KnowsWhereSecretsLie) {
  using Place = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>;
  std::multiset<Place> expected;
  for (uint32_t type : {10U, 62U, 63U}) expected.insert({type, 40, 32, 0});
  for (uint32_t type : {56U, 57U}) {
    for (uint32_t community : {0U, 32U, 64U}) expected.insert({type, community, 32, 0});
  }
  // Entries after the head of a request, and without one.
  for (uint32_t type : {41U, 108U, 109U, 110U, 111U, 112U, 113U}) {
    expected.insert({type, 112, 12, 44});
    expected.insert({type, 32, 12, 44});
  }
  std::multiset<Place> places;
  for (const auto &secret : wire_secrets()) {
    places.insert({secret.message_type, secret.offset, secret.length, secret.stride});
  }
  EXPECT_EQ(places, expected);
}

TEST(Catalog, KnowsWhatSendsNothing) {
  size_t silent = 0;
  each_operation([&silent](const Operation &operation) {
    if (!operation.address.sends()) ++silent;
  });
  EXPECT_EQ(silent, 6U);
  EXPECT_FALSE(find("read_olt_serial")->address.sends());
}

TEST(Catalog, KnowsWhichResultsAreSuccess) {
  const Operation &reads = *find("read_from_flash");
  EXPECT_TRUE(reads.succeeded(0));
  EXPECT_TRUE(reads.succeeded(4096));
  EXPECT_FALSE(reads.succeeded(-1));
  EXPECT_TRUE(find("erase_to_flash")->succeeded(0));
  EXPECT_FALSE(find("erase_to_flash")->succeeded(1));
  EXPECT_FALSE(find("get_olt_mac")->succeeded(5));
  EXPECT_STREQ(find("get_snmp_olt_port_status")->outcome.minus_one, "slot or port is out of range");
}

TEST(CatalogRow, DeducesKindsDirectionsAndSizes) {
  auto arguments = find("get_user_level")->arguments();
  ASSERT_EQ(arguments.size(), 4U);
  EXPECT_STREQ(arguments[0].name, "name");
  EXPECT_EQ(arguments[0].kind, Kind::kValue);
  EXPECT_EQ(arguments[0].form, FieldKind::kText);
  EXPECT_EQ(arguments[0].direction, Direction::kIn);
  EXPECT_EQ(arguments[0].max, 31U);
  EXPECT_FALSE(arguments[0].secret);
  EXPECT_TRUE(arguments[1].secret);
  EXPECT_EQ(arguments[2].form, FieldKind::kNumber);
  EXPECT_EQ(arguments[2].direction, Direction::kOut);

  EXPECT_EQ(find("add_user_level")->arguments()[2].direction, Direction::kIn);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].size, 6U);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].direction, Direction::kOut);
  EXPECT_EQ(find("set_snmp_systeminfo")->arguments()[0].size, 196U);
  EXPECT_EQ(find("set_snmp_systeminfo")->arguments()[0].direction, Direction::kIn);
  EXPECT_EQ(find("get_system_network")->arguments()[0].direction, Direction::kInOut);
  EXPECT_EQ(find("modify_user_level")->arguments()[0].direction, Direction::kIn);
  EXPECT_EQ(find("show_memory_info")->arguments()[1].form, FieldKind::kListing);
  EXPECT_EQ(find("show_memory_info")->arguments()[1].size, 32U);
  EXPECT_TRUE(find("do_reboot_system")->arguments().empty());
}

TEST(CatalogRow, FoldsBytesAndTheirLengthIntoOneArgument) {
  auto arguments = find("do_handle_epon_updatestream")->arguments();
  ASSERT_EQ(arguments.size(), 2U);
  EXPECT_EQ(arguments[0].kind, Kind::kStream);
  EXPECT_EQ(arguments[0].direction, Direction::kIn);
  EXPECT_EQ(arguments[1].kind, Kind::kBlock);
  EXPECT_EQ(arguments[1].direction, Direction::kOut);
}

TEST(CatalogRow, FoldsAListAndItsCountIntoOneArgument) {
  auto entries = find("add_authallowed_loid")->arguments();
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[2].kind, Kind::kEntries);
  EXPECT_EQ(entries[2].size, 44U);
  auto ids = find("delete_ont_port_muticastvlan")->arguments();
  ASSERT_EQ(ids.size(), 2U);
  EXPECT_EQ(ids[1].kind, Kind::kIds);
  EXPECT_EQ(find("add_vlan_list")->arguments()[0].kind, Kind::kVlans);
}

TEST(CatalogRow, KnowsHowLongBlocksAndBuffersAre) {
  auto headed = find("process_snmp_hguwaninfo")->arguments();
  EXPECT_EQ(headed[1].kind, Kind::kHeadedBlock);
  EXPECT_EQ(headed[1].size, 88U);
  EXPECT_EQ(find("process_snmp_onuglobalinfo")->arguments()[1].size, 60U);
  EXPECT_EQ(find("get_igmpproxy_config_all")->arguments()[0].kind, Kind::kReplyBlock);
  EXPECT_EQ(find("read_from_flash")->arguments()[1].kind, Kind::kBuffer);
  EXPECT_EQ(find("read_olt_serial")->arguments()[0].form, FieldKind::kText);
  EXPECT_EQ(find("read_olt_serial")->arguments()[0].size, 10U);
}

TEST(CatalogRow, KnowsTheFormOfARecordAsAWhole) {
  EXPECT_EQ(find("clear_onu_node")->arguments()[0].form, FieldKind::kOnt);
  EXPECT_EQ(find("add_ont_description")->arguments()[0].form, FieldKind::kOnt);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].form, FieldKind::kMac);
  EXPECT_EQ(find("set_ont_port_downrate")->arguments()[1].form, FieldKind::kNumbers);
  EXPECT_EQ(find("set_ont_fax")->arguments()[1].form, FieldKind::kBytes);
}

TEST(CatalogRow, KnowsTheFieldsOfARecord) {
  auto fields = find("process_switchdebug_value")->arguments()[0].fields;
  ASSERT_EQ(fields.size(), 4U);
  EXPECT_STREQ(fields[2].name, "debug_value");
  EXPECT_EQ(fields[2].offset, 24);
  EXPECT_EQ(fields[2].width, 2);
  EXPECT_EQ(fields[2].kind, FieldKind::kNumber);
  EXPECT_EQ(fields[1].kind, FieldKind::kBytes);
  EXPECT_EQ(fields[0].kind, FieldKind::kNumber);

  auto user = find("modify_user_level")->arguments()[0].fields;
  ASSERT_EQ(user.size(), 6U);
  EXPECT_EQ(user[3].kind, FieldKind::kText);
  EXPECT_EQ(user[3].offset, 40);
  EXPECT_TRUE(user[3].secret);
  EXPECT_FALSE(user[2].secret);

  auto ont = find("clear_onu_node")->arguments()[0].fields;
  ASSERT_EQ(ont.size(), 8U);
  EXPECT_EQ(ont[0].kind, FieldKind::kOnt);
  EXPECT_EQ(ont[0].width, 12);
  EXPECT_EQ(ont[4].kind, FieldKind::kMac);
  EXPECT_EQ(ont[4].offset, 28);
}

TEST(CatalogRow, KnowsWhatFieldsAreFor) {
  auto ont = find("clear_onu_node")->arguments()[0].fields;
  EXPECT_EQ(ont[0].role, Role::kRowName);
  EXPECT_EQ(ont[1].role, Role::kSelector);
  EXPECT_EQ(ont[3].role, Role::kReserved);
  EXPECT_EQ(ont[4].role, Role::kRowName);
  auto row = find("process_snmp_vlan_id")->arguments()[0].fields;
  EXPECT_EQ(row[0].role, Role::kSelector);
  EXPECT_EQ(row[1].role, Role::kRowName);
  EXPECT_EQ(row[2].role, Role::kPlain);
}

TEST(CatalogRow, EveryReservedFieldHasThatRole) {
  size_t reserved = 0;
  each_operation([&reserved](const Operation &operation) {
    for (const Argument &argument : operation.arguments()) {
      for (const Field &field : argument.fields) {
        bool is_reserved = std::string(field.name).starts_with("reserved_");
        EXPECT_EQ(field.role == Role::kReserved, is_reserved) << operation.name << field.name;
        reserved += is_reserved ? 1 : 0;
      }
    }
  });
  EXPECT_GT(reserved, 100U);
}

TEST(CatalogRow, KnowsTheBoxsRecordsByteForByte) {
  struct {
    const char *operation;
    size_t argument;
    const char *field;
    uint32_t offset, width;
    FieldKind kind;
  } const places[] = {
      {"add_authallowed_mac", 2, "loid", 8, 24, FieldKind::kPadded},
      {"add_authallowed_mac", 2, "password", 32, 12, FieldKind::kPadded},
      {"deal_wan_connection", 1, "settings", 8, 117, FieldKind::kBytes},
      {"process_snmp_onubasicinfo", 1, "mac", 16, 6, FieldKind::kMac},
      {"process_snmp_onubasicinfo", 1, "description", 72, 48, FieldKind::kPadded},
      {"process_snmp_linkbasicinfo", 1, "features", 100, 48, FieldKind::kNumbers},
      {"process_snmp_onuglobalinfo", 1, "length", 56, 4, FieldKind::kNumber},
      {"process_snmp_onuglobalinfo", 1, "parts", 60, 0, FieldKind::kRecords},
      {"process_snmp_hguwaninfo", 1, "connections", 88, 0, FieldKind::kRecords},
      {"process_snmp_iadinfo", 1, "registered", 72, 4, FieldKind::kNumber},
      {"process_onu_portmuticastmaxgroup", 0, "group_limit", 20, 4, FieldKind::kNumber},
      {"process_snmp_oltauth", 0, "onus_blocked", 40, 4, FieldKind::kNumber},
  };
  for (const auto &place : places) {
    auto fields = find(place.operation)->arguments()[place.argument].fields;
    const auto *field = std::find_if(fields.data(), fields.data() + fields.size(), [&](auto &one) {
      return one.name == std::string(place.field);
    });
    ASSERT_NE(field, fields.data() + fields.size()) << place.field;
    EXPECT_EQ(field->offset, place.offset) << place.field;
    EXPECT_EQ(field->width, place.width) << place.field;
    EXPECT_EQ(field->kind, place.kind) << place.field;
  }
}

}  // namespace

}  // namespace olt::test
