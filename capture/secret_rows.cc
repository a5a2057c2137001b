// Prints the rows of capture/trace/secret_rows.inc: where messages carry secrets, from the catalog.
#include <algorithm>
#include <cstdio>
#include <tuple>
#include <vector>

#include "catalog/catalog.h"

using olt::catalog::WireSecret;

int main() {
  std::span<const WireSecret> secrets = olt::catalog::wire_secrets();
  std::vector<WireSecret> rows(secrets.begin(), secrets.end());
  std::sort(rows.begin(), rows.end(), [](const WireSecret &one, const WireSecret &other) {
    return std::tie(one.message_type, one.offset, one.length, one.stride) <
           std::tie(other.message_type, other.offset, other.length, other.stride);
  });
  std::printf("// Written by ./dev renew from the catalog: type, offset, length, stride.\n");
  for (const WireSecret &row : rows)
    std::printf("{%u, %u, %u, %u},\n", row.message_type, row.offset, row.length, row.stride);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
