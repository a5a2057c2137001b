// docs/box.md lists the messages that the box serves, each with the length of its request.
#include <gtest/gtest.h>

#include "tests/box/support.h"
#include "tests/support/page.h"

namespace olt::test {

namespace {

using Lines = std::vector<std::string>;

std::string line_of(const std::string &module, const std::string &type, const std::string &name,
                    const std::string &lengths) {
  return "module " + module + " type " + type + " " + name + ": request " + lengths;
}

/// "16,376" as 16376, "16 Mi" as 16777216.
std::string plain_number(std::string text) {
  std::erase(text, ',');
  return text == "16 Mi" ? "16777216" : text;
}

/// "8 to 16 Mi" as "8 to 16777216", "80" as "80 to 80".
std::string range(const std::string &text) {
  Lines ends = split(text, " to ");
  return plain_number(ends.front()) + " to " + plain_number(ends.back());
}

/// The value for the n-th type of a row: the cell has one for each type, or one for all.
std::string value_for(const std::string &cell, size_t n) {
  Lines values = split(cell, ", ");
  return values.size() == 1 ? values[0] : values.at(n);
}

Lines documented() {
  Lines lines;
  for (const Cells &row : table_in_page("box.md", "| Module | Type |")) {
    Lines types = split(row.at(1), ", ");
    for (const std::string &module : split(row.at(0), ", ")) {
      for (size_t i = 0; i < types.size(); ++i) {
        lines.push_back(
            line_of(module, types[i], value_for(row.at(2), i), range(value_for(row.at(3), i))));
      }
    }
  }
  return lines;
}

Lines served() {
  Folder folder;
  Families all(folder);
  Lines lines;
  for (const auto &family : make_families(all.hardware, all.state)) {
    for (const box::Message &message : family->messages()) {
      lines.push_back(line_of(
          std::to_string(message.module), std::to_string(message.type), std::string(message.name),
          std::to_string(message.request.min) + " to " + std::to_string(message.request.max)));
    }
  }
  return lines;
}

TEST(DocumentedMessages, AreThoseThatTheBoxServes) {
  EXPECT_EQ(without(served(), documented()), Lines()) << "not in docs/box.md";
  EXPECT_EQ(without(documented(), served()), Lines()) << "in docs/box.md alone";
}

}  // namespace

}  // namespace olt::test
