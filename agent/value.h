/// Fields of records as SMI values, and the reverse.
#ifndef OLT_AGENT_VALUE_H
#define OLT_AGENT_VALUE_H

#include <cstdint>
#include <optional>

#include "agent/objects.h"
#include "base/text.h"

namespace olt::agent {

/// A number, or octets: the column's type says which.
struct Value {
  int64_t number = 0;
  Bytes octets{};

  bool operator==(const Value &) const = default;
};

/// Whether values of the type are numbers.
bool is_number(SmiType type);

/// The column's value in the record. Bytes that the record does not have are zeros.
Value value_of(const Column &column, ByteView record);

/// The bytes of the column's field that hold the value; nothing when they cannot.
std::optional<Bytes> bytes_of(const Column &column, const Value &value);

}  // namespace olt::agent

#endif
