// Every table of records is saved, restored and forgotten, whichever family it belongs to.

#include <gtest/gtest.h>

#include <optional>

#include "tests/box/support.h"

namespace olt::test {

namespace {

using box::OnuPart;
using box::OnuRecords;
using box::Scope;

/// The first ONU, or its first part.
OnuPart place_in(const OnuRecords::Entry &entry) {
  return {1, 1, entry.table.scope() == Scope::kOnu ? 0U : 1U};
}

/// A record that each table may keep: one VLAN, and the name of a profile.
Bytes record_for(const OnuRecords::Entry &entry) {
  return record(entry.table.size(), {{0, hex("01 01")}});
}

void fill(box::SharedState &state) {
  state.iptv.profiles["\x01\x01"];
  for (OnuRecords::Entry &entry : state.onus.records.entries()) {
    entry.table.set(place_in(entry), record_for(entry));
  }
}

/// The keys of the tables that keep a record.
std::vector<std::string_view> kept(box::SharedState &state) {
  std::vector<std::string_view> keys;
  for (const auto &[group, table] : state.onus.records.entries()) {
    if (!table.kept().empty()) keys.push_back(table.key());
  }
  return keys;
}

std::vector<std::string_view> all_keys(box::SharedState &state) {
  std::vector<std::string_view> keys;
  for (const auto &[group, table] : state.onus.records.entries()) keys.push_back(table.key());
  return keys;
}

TEST(OnuRecords, AreAllSaved) {
  Folder folder;
  std::optional<Families> saved(folder);
  fill(saved->state);
  saved->hardware.save();
  saved.reset();
  Families started(folder);
  EXPECT_EQ(kept(started.state), all_keys(started.state));
  for (const OnuRecords::Entry &entry : started.state.onus.records.entries()) {
    auto found = entry.table.at(place_in(entry));
    EXPECT_EQ(Bytes(found.begin(), found.end()), record_for(entry)) << entry.table.key();
  }
}

TEST(OnuRecords, AreAllRestoredToTheFactoryState) {
  Folder folder;
  Families families(folder);
  fill(families.state);
  EXPECT_EQ(kept(families.state).size(), 23U);
  families.hardware.restore_factory();
  EXPECT_TRUE(kept(families.state).empty()) << kept(families.state).front();
}

TEST(OnuRecords, AreForgottenWithTheirOnu) {
  Folder folder;
  Families families(folder);
  fill(families.state);
  families.state.onus.forget({1, 2});
  EXPECT_EQ(kept(families.state), all_keys(families.state));
  families.state.onus.forget({1, 1});
  EXPECT_TRUE(kept(families.state).empty()) << kept(families.state).front();
}

TEST(OnuRecords, OfTheOnuItselfOutliveItsServices) {
  Folder folder;
  Families families(folder);
  fill(families.state);
  families.state.onus.forget_services({1, 1});
  EXPECT_EQ(kept(families.state),
            (std::vector<std::string_view>{"feature", "description", "link_dba", "user_traffic"}));
}

}  // namespace

}  // namespace olt::test
