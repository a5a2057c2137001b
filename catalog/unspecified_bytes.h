/// The bytes of requests that nothing is known of.
#ifndef OLT_CATALOG_UNSPECIFIED_BYTES_H
#define OLT_CATALOG_UNSPECIFIED_BYTES_H

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "catalog/operation.h"

namespace olt::catalog {

/// Some operations send what memory held where no argument is. Such bytes have no meaning, and
/// differ from one call to the next.
class UnspecifiedBytes {
 public:
  UnspecifiedBytes();

  /// Whether requests of the type may have any.
  bool may_be_in(uint32_t message_type) const { return senders_.contains(message_type); }

  /// Sets them to 0. Where several operations may have sent the request, only those bytes that none
  /// of them specifies.
  void clear(uint32_t module, uint32_t message_type, std::span<uint8_t> request) const;

 private:
  /// All operations that send the type.
  std::map<uint32_t, std::vector<const Operation *>> senders_;
};

}  // namespace olt::catalog

#endif
