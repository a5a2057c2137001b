/// Which operations may have sent a request.
#ifndef OLT_CATALOG_SENDERS_H
#define OLT_CATALOG_SENDERS_H

#include <cstdint>
#include <span>
#include <vector>

#include "catalog/layout.h"

namespace olt::catalog {

struct SentRequest {
  uint32_t module;
  uint32_t message_type;
  std::span<const uint8_t> bytes;  ///< the first ones, perhaps not all
  uint32_t length;                 ///< of the whole request
};

bool may_send(const Operation &operation, const SentRequest &request);

/// In the order of the catalog.
std::vector<const Operation *> senders_of(const SentRequest &request, const Layout &layout);

/// Those that send this type to this module, whatever the request holds.
std::vector<const Operation *> senders_of(uint32_t module, uint32_t message_type,
                                          const Layout &layout);

}  // namespace olt::catalog

#endif
