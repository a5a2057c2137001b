// Calls every operation that sends, with arguments and replies of scattered bytes, and prints its
// name once for each exchange. Then makes an exchange of no operation whose request is too long to
// be recorded whole. What it sends is for libolttrace to record.
#include <algorithm>
#include <cstdio>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "oltplatform.h"
#include "tests/capture/answering_platform.h"
#include "tests/catalog/caller_memory.h"

namespace {

using olt::catalog::Operation;
using olt::catalog::Part;
using Bytes = std::vector<uint8_t>;

constexpr size_t kItems = 3;
constexpr size_t kText = 7;
constexpr size_t kRest = 90;
constexpr uint32_t kLongRequest = 140'000;

/// Never 0, and printable, so that they are texts, too.
uint8_t next_byte() {
  static uint32_t state = 1;
  state = state * 1'664'525 + 1'013'904'223;
  return static_cast<uint8_t>('0' + (state >> 16) % 75);
}

Bytes scattered(size_t size) {
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), next_byte);
  return bytes;
}

/// With all fields, also behind those that the operation reads.
Bytes reply_to(const Operation &operation) {
  size_t size = operation.reply.fixed_length();
  for (const auto &placed : fields_of(operation, operation.reply))
    size = std::max<size_t>(size, placed.field.offset + placed.field.width);
  bool is_open = false;
  for (const Part &part : operation.reply.parts()) is_open = is_open || part.reaches_the_end();
  Bytes reply = scattered(size + (is_open ? kRest : 0));
  olt::test::shape_reply(operation, kText, reply);
  return reply;
}

bool call(const Operation &operation) {
  bool is_asked_twice = operation.address.second_module != olt::catalog::Address::kNone;
  for (int i = 0; i < (is_asked_twice ? 2 : 1); ++i) std::printf("%s\n", operation.name);
  olt::test::CallerMemory memory(operation, {.items = kItems, .text = kText}, next_byte);
  Bytes reply = reply_to(operation);
  reply_with(reply.data(), static_cast<uint16_t>(reply.size()));
  int32_t result = memory.call();
  if (!operation.succeeded(result)) {
    static_cast<void>(std::fprintf(stderr, "%s: result %d\n", operation.name, result));
    return false;
  }
  return true;
}

}  // namespace

int main() {
  bool succeeded = true;
  for (const olt::catalog::Family &family : olt::catalog::families()) {
    for (const Operation &operation : family.operations)
      if (operation.address.sends()) succeeded = call(operation) && succeeded;
  }
  Bytes request = scattered(kLongRequest);
  uint16_t status = 0;
  platmsg_syn_result(60'000, 2, request.data(), kLongRequest, nullptr, nullptr, nullptr, &status, 1,
                     10);
  return succeeded ? 0 : 1;
}
