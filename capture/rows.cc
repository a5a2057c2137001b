// Prints the rows of capture/trace/secret_rows.inc or listing_rows.inc, from the catalog: where
// messages carry secrets, and where replies hold the name of a listing's file.
#include <algorithm>
#include <cstdio>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"

namespace {

using olt::catalog::WireSecret;

void print_secrets() {
  std::span<const WireSecret> secrets = olt::catalog::wire_secrets();
  std::vector<WireSecret> rows(secrets.begin(), secrets.end());
  std::sort(rows.begin(), rows.end(), [](const WireSecret &one, const WireSecret &other) {
    return std::tie(one.message_type, one.offset, one.length, one.stride) <
           std::tie(other.message_type, other.offset, other.length, other.stride);
  });
  std::printf("// Written by ./dev renew from the catalog: type, offset, length, stride.\n");
  for (const WireSecret &row : rows)
    std::printf("{%u, %u, %u, %u},\n", row.message_type, row.offset, row.length, row.stride);
}

void print_listings() {
  std::set<std::pair<uint32_t, uint32_t>> rows;
  for (const olt::catalog::Family &family : olt::catalog::families()) {
    for (const olt::catalog::Operation &operation : family.operations) {
      for (const auto &placed : fields_of(operation, operation.reply)) {
        if (placed.field.kind == olt::catalog::FieldKind::kListing)
          rows.emplace(operation.address.message_type, placed.field.offset);
      }
    }
  }
  std::printf("// Written by ./dev renew from the catalog: type, offset in the reply.\n");
  for (const auto &[message_type, offset] : rows) std::printf("{%u, %u},\n", message_type, offset);
}

}  // namespace

int main(int argc, char **argv) {
  std::string_view what = argc == 2 ? argv[1] : "";
  if (what == "secrets") {
    print_secrets();
  } else if (what == "listings") {
    print_listings();
  } else {
    std::fputs("usage: capture_rows secrets|listings\n", stderr);
    return 2;
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}
