#include "catalog/unspecified_bytes.h"

#include <algorithm>

#include "catalog/catalog.h"
#include "catalog/senders.h"

namespace olt::catalog {

namespace {

bool has_any(const Operation &operation) {
  std::span<const Part> parts = operation.request.parts();
  return std::any_of(parts.begin(), parts.end(), [](const Part &part) {
    return part.origin == Origin::kAny || (part.is_text && part.rest == Origin::kAny);
  });
}

/// Sets 1 for each byte that the operation specifies.
void mark_specified(const Operation &operation, std::span<const uint8_t> request,
                    std::vector<uint8_t> &marks) {
  for (const Part &part : operation.request.parts()) {
    size_t end = part.reaches_the_end() ? request.size() : size_t{part.offset} + part.width;
    end = std::min(end, request.size());
    bool ends_at_zero = part.is_text && part.rest == Origin::kAny;
    for (size_t i = part.offset; part.origin != Origin::kAny && i < end; ++i) {
      marks[i] = 1;
      if (ends_at_zero && request[i] == 0) break;
    }
  }
}

}  // namespace

UnspecifiedBytes::UnspecifiedBytes() {
  for (const Family &family : families()) {
    for (const Operation &operation : family.operations)
      if (operation.address.sends()) senders_[operation.address.message_type].push_back(&operation);
  }
  std::erase_if(senders_, [](const auto &of_type) {
    return std::none_of(of_type.second.begin(), of_type.second.end(),
                        [](const Operation *operation) { return has_any(*operation); });
  });
}

void UnspecifiedBytes::clear(uint32_t module, uint32_t message_type,
                             std::span<uint8_t> request) const {
  auto senders = senders_.find(message_type);
  if (senders == senders_.end()) return;
  std::vector<uint8_t> specified(request.size());
  bool is_known = false;
  for (const Operation *operation : senders->second) {
    if (!may_send(*operation, {.module = module,
                               .message_type = message_type,
                               .bytes = request,
                               .length = static_cast<uint32_t>(request.size())})) {
      continue;
    }
    is_known = true;
    mark_specified(*operation, request, specified);
  }
  for (size_t i = 0; is_known && i < request.size(); ++i)
    if (specified[i] == 0) request[i] = 0;
}

}  // namespace olt::catalog
