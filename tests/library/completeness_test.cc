// Every operation is declared, exported and listed in the export map, and has a row.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "tests/library/operation_table.h"

namespace {

using Names = std::set<std::string>;

Names matches(const std::string &text, const std::regex &pattern) {
  Names names;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
    names.insert((*match)[1]);
  return names;
}

std::string read_file(const char *path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string output_of(const char *command) {
  FILE *pipe = popen(command, "r");
  std::string output;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) output += static_cast<char>(c);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return output;
}

Names declared() {
  return matches(read_file(OLT_HEADER), std::regex(R"(\bOLT_API\s+int32_t\s+(\w+)\s*\()"));
}

Names mapped() {
  return matches(read_file(OLT_EXPORT_MAP), std::regex(R"(^\s+(\w+);$)", std::regex::multiline));
}

Names exported() {
  return matches(output_of(OLT_NM " -D --defined-only " OLT_LIBRARY),
                 std::regex(R"(\b[0-9a-f]+ [B-Zi-w] (\w+))"));
}

Names tested() {
  Names names;
  for (const olt::test::Table *table = olt::test::all_tables(); table->rows != nullptr; ++table)
    for (size_t i = 0; i != table->count; ++i) names.insert(table->rows[i].operation);
  return names;
}

TEST(Completeness, EveryDeclaredOperationIsExportedAndNothingElse) {
  EXPECT_THAT(declared(), testing::SizeIs(testing::Ge(182)));
  EXPECT_EQ(exported(), declared());
}

TEST(Completeness, TheExportMapListsWhatIsExported) {
  EXPECT_EQ(mapped(), exported());
}

// The flash operations make no exchange: tests/flash checks their system calls.
const Names kWithoutExchange = {"read_from_flash", "save_to_flash",  "erase_to_flash",
                                "read_oam_type",   "write_oam_type", "read_olt_serial"};

TEST(Completeness, EveryExportedOperationWithAnExchangeHasARow) {
  Names expected = exported();
  for (const std::string &name : kWithoutExchange) EXPECT_EQ(expected.erase(name), 1U) << name;
  EXPECT_EQ(tested(), expected);
}

TEST(Completeness, NothingIsDeclaredWithoutTheExportMark) {
  Names functions =
      matches(read_file(OLT_HEADER), std::regex(R"(\b(\w+)\([^()]*\);)", std::regex::multiline));
  EXPECT_EQ(functions, declared());
}

}  // namespace
