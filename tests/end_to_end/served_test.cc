// The public header documents the message that each operation sends, and a running box serves it.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <string>

#include "catalog/catalog.h"
#include "oltplatform.h"
#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"
#include "tests/support/wire_names.h"

namespace olt::test {

namespace {

using catalog::Address;
using catalog::Operation;

constexpr uint32_t kModules[] = {kMainModule, kOamModule, kLogModule, kRstpModule};

template <typename Function>
size_t each_operation(Function function) {
  size_t count = 0;
  for (const auto &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      function(operation);
      ++count;
    }
  }
  return count;
}

/// The comment above each declaration, without its marks, by operation.
std::map<std::string, std::string> comments() {
  std::map<std::string, std::string> comments;
  std::ifstream header(OLT_HEADER);
  std::string comment;
  const std::string kMark = "///";
  const std::string kDeclaration = "OLT_API int32_t ";
  for (std::string line; std::getline(header, line);) {
    if (line.starts_with(kMark)) {
      comment += line.substr(kMark.size());
      continue;
    }
    if (line.starts_with(kDeclaration)) {
      size_t begin = kDeclaration.size();
      comments[line.substr(begin, line.find('(') - begin)] = comment;
    }
    comment.clear();
  }
  return comments;
}

std::string address_text(const Address &address) {
  std::string type = "Message type " + std::to_string(address.message_type);
  if (address.module == Address::kNamedByCaller) return type + " to the given module";
  std::string module = "to module " + std::to_string(address.module);
  if (address.second_module == Address::kNone) return type + " " + module + ", time-out ";
  return type + ", time-out 10 s each, " + module + " and, if that accepts, to module " +
         std::to_string(address.second_module);
}

TEST(Operations, AreDocumentedWithWhatTheySend) {
  auto all = comments();
  size_t count = each_operation([&all](const Operation &operation) {
    const std::string &comment = all[operation.name];
    EXPECT_FALSE(comment.empty()) << operation.name << " has no comment";
    EXPECT_TRUE(holds(comment, " @return ")) << operation.name << ":" << comment;
    if (!operation.address.sends()) return;
    EXPECT_TRUE(holds(comment, address_text(operation.address)))
        << operation.name << " should say: " << address_text(operation.address) << ":" << comment;
  });
  EXPECT_GE(count, 182U);
}

/// No message has a request of one byte, so a module that serves the type answers kBadLength.
uint32_t status_of_a_byte(uint32_t module, uint32_t type) {
  char byte = 0;
  uint16_t status = 0;
  int32_t result =
      platmsg_syn_result(type, module, &byte, 1, nullptr, nullptr, nullptr, &status, 1, 10);
  EXPECT_EQ(result, 0) << "module " << module << ", type " << type;
  return status;
}

TEST(Operations, AreServedByTheBox) {
  RunningBox box;
  box.start();
  std::set<uint32_t> types;
  each_operation([&types](const Operation &operation) {
    const Address &address = operation.address;
    if (!address.sends()) return;
    types.insert(address.message_type);
    for (uint32_t module : kModules) {
      bool is_asked = address.module == Address::kNamedByCaller || address.module == module ||
                      address.second_module == module;
      if (!is_asked) continue;
      EXPECT_EQ(status_of_a_byte(module, address.message_type), kBadLength)
          << operation.name << ", message type " << address.message_type << " at module " << module;
    }
  });
  EXPECT_EQ(types.size(), 170U);
  EXPECT_EQ(status_of_a_byte(kMainModule, 175), kNotServed);
}

}  // namespace

}  // namespace olt::test
