/// The catalog: one row for each operation that liboltmgmt exports, in the order of its header.
#ifndef OLT_CATALOG_CATALOG_H
#define OLT_CATALOG_CATALOG_H

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "catalog/operation.h"

namespace olt::catalog {

/// Operations that belong together.
struct Family {
  const char *title;
  std::span<const Operation> operations;
};

std::span<const Family> families();

/// The operation of that name, or null.
const Operation *find(std::string_view name);

struct Module {
  uint8_t number;
  const char *name;
};

/// The modules that operations send to, where the caller does not name one.
std::span<const Module> modules();

/// Where requests and replies of a message type may carry a secret.
struct WireSecret {
  uint16_t message_type;
  uint16_t offset;
  uint16_t length;
  uint16_t stride = 0;  ///< bytes from one secret to the next; 0 when there is one

  bool operator==(const WireSecret &) const = default;
};

/// Every place where a field is that is secret. Whether a reply has a head before its records, as
/// the request does, is up to the module: with a head and without, both places count.
std::vector<WireSecret> wire_secrets(std::span<const Family> families);
/// Those of the catalog itself.
std::span<const WireSecret> wire_secrets();

}  // namespace olt::catalog

#endif
