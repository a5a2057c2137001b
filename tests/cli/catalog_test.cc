#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "catalog/row.h"
#include "tests/cli/program.h"

namespace {

using olt::catalog::Argument;
using olt::catalog::Direction;
using olt::catalog::families;
using olt::catalog::Family;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::find;
using olt::catalog::find_sender;
using olt::catalog::Form;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::catalog::wire_secrets;
using Names = std::multiset<std::string>;

template <typename Function>
void each_operation(Function fn) {
  for (const Family &family : families()) {
    for (const Operation &operation : family.operations) fn(operation);
  }
}

Names exported_names() {
  olt::tests::Finished nm = olt::tests::run({"nm", "-D", "--defined-only", LIBOLTMGMT}, {});
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
  EXPECT_EQ(exported.size(), 182U);
  EXPECT_EQ(rows, exported);
}

TEST(Catalog, FindsByNameAndByMessageType) {
  ASSERT_NE(find("Cl_Set_SntpCfg_apply"), nullptr);
  EXPECT_EQ(find("Cl_Set_SntpCfg_apply")->address.message_type, 52);
  EXPECT_EQ(find("cl_set_sntpcfg_apply"), nullptr);
  ASSERT_NE(find_sender(81), nullptr);
  EXPECT_STREQ(find_sender(81)->name, "get_system_loginfofile");
  EXPECT_EQ(find_sender(1), nullptr);
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
  EXPECT_EQ(secrets, 12U);
}

TEST(Catalog, PasswordsLieWhereUsersAndEntriesHaveThem) {
  std::set<uint32_t> users;
  std::set<uint32_t> entries;
  for (const auto &secret : wire_secrets()) {
    bool of_user = secret.stride == 0;
    (of_user ? users : entries).insert(secret.message_type);
    EXPECT_EQ(secret.offset, of_user ? 40 : 112);
    EXPECT_EQ(secret.length, of_user ? 32 : 12);
    EXPECT_EQ(secret.stride, of_user ? 0 : 44);
  }
  EXPECT_EQ(users, (std::set<uint32_t>{10, 62, 63}));
  EXPECT_EQ(entries, (std::set<uint32_t>{41, 108, 109, 110, 111, 112, 113}));
}

TEST(Catalog, KnowsWhatSendsNothing) {
  size_t silent = 0;
  each_operation([&silent](const Operation &operation) {
    if (!operation.address.sends()) ++silent;
  });
  EXPECT_EQ(silent, 6U);
  EXPECT_FALSE(find("read_olt_serial")->address.sends());
  EXPECT_EQ(find_sender(0), nullptr);
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
  EXPECT_EQ(arguments[0].kind, Kind::kText);
  EXPECT_EQ(arguments[0].direction, Direction::kIn);
  EXPECT_EQ(arguments[0].most, 31U);
  EXPECT_FALSE(arguments[0].secret);
  EXPECT_TRUE(arguments[1].secret);
  EXPECT_EQ(arguments[2].kind, Kind::kWord);
  EXPECT_EQ(arguments[2].direction, Direction::kOut);

  EXPECT_EQ(find("add_user_level")->arguments()[2].direction, Direction::kIn);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].size, 6U);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].direction, Direction::kOut);
  EXPECT_EQ(find("set_snmp_systeminfo")->arguments()[0].size, 196U);
  EXPECT_EQ(find("set_snmp_systeminfo")->arguments()[0].direction, Direction::kIn);
  EXPECT_EQ(find("get_system_network")->arguments()[0].direction, Direction::kInOut);
  EXPECT_EQ(find("modify_user_level")->arguments()[0].direction, Direction::kIn);
  EXPECT_EQ(find("show_memory_info")->arguments()[1].kind, Kind::kName);
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
  EXPECT_EQ(find("read_olt_serial")->arguments()[0].kind, Kind::kText);
  EXPECT_EQ(find("read_olt_serial")->arguments()[0].size, 10U);
}

TEST(CatalogRow, KnowsTheShortFormOfARecord) {
  EXPECT_EQ(find("clear_onu_node")->arguments()[0].form, Form::kOnt);
  EXPECT_EQ(find("add_ont_description")->arguments()[0].form, Form::kOnt);
  EXPECT_EQ(find("get_olt_mac")->arguments()[0].form, Form::kMac);
  EXPECT_EQ(find("set_ont_port_downrate")->arguments()[1].form, Form::kWords);
  EXPECT_EQ(find("set_ont_fax")->arguments()[1].form, Form::kBytes);
}

TEST(CatalogRow, KnowsTheFieldsOfARecord) {
  auto fields = find("process_switchdebug_value")->arguments()[0].fields;
  ASSERT_EQ(fields.size(), 4U);
  EXPECT_STREQ(fields[2].name, "debug_value");
  EXPECT_EQ(fields[2].offset, 24);
  EXPECT_EQ(fields[2].width, 2);
  EXPECT_EQ(fields[2].kind, FieldKind::kHalfWord);
  EXPECT_EQ(fields[1].kind, FieldKind::kBytes);
  EXPECT_EQ(fields[0].kind, FieldKind::kWord);

  auto user = find("modify_user_level")->arguments()[0].fields;
  ASSERT_EQ(user.size(), 6U);
  EXPECT_EQ(user[3].kind, FieldKind::kText);
  EXPECT_EQ(user[3].offset, 40);
  EXPECT_TRUE(user[3].secret);
  EXPECT_FALSE(user[2].secret);

  auto ont = find("clear_onu_node")->arguments()[0].fields;
  ASSERT_EQ(ont.size(), 7U);
  EXPECT_EQ(ont[0].kind, FieldKind::kWords);
  EXPECT_EQ(ont[0].width, 12);
  EXPECT_EQ(ont[3].kind, FieldKind::kMac);
  EXPECT_EQ(ont[3].offset, 28);
}

}  // namespace
