// Prints the rows of box/watch/message_types.inc: the operations that send, and their message
// types.
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"

using olt::catalog::Operation;

int main() {
  std::vector<const Operation *> rows;
  for (const olt::catalog::Family &family : olt::catalog::families()) {
    for (const Operation &operation : family.operations) {
      if (operation.address.sends()) rows.push_back(&operation);
    }
  }
  std::sort(rows.begin(), rows.end(), [](const Operation *one, const Operation *other) {
    return std::string_view(one->name) < other->name;
  });
  std::printf("// Written by ./dev renew from the catalog: operation, message type.\n");
  for (const Operation *row : rows) {
    std::printf("{\"%s\", %u},\n", row->name, row->address.message_type);
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}
