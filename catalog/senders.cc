#include "catalog/senders.h"

#include <algorithm>

namespace olt::catalog {

namespace {

bool holds_constants(const Operation &operation, std::span<const uint8_t> request) {
  std::span<const Part> parts = operation.request.parts();
  return std::all_of(parts.begin(), parts.end(), [request](const Part &part) {
    if (part.origin != Origin::kConstant) return true;
    for (size_t i = 0; i < part.width && part.offset + i < request.size(); ++i) {
      uint32_t byte = i < sizeof part.constant ? part.constant >> (8 * i) & 0xFFU : 0;
      if (request[part.offset + i] != byte) return false;
    }
    return true;
  });
}

bool sends_to(const Operation &operation, uint32_t module, uint32_t message_type) {
  const Address &address = operation.address;
  bool is_module = address.module == Address::kNamedByCaller || address.module == module ||
                   address.second_module == module;
  return address.sends() && address.message_type == message_type && is_module;
}

template <typename Fits>
std::vector<const Operation *> all_that(const Layout &layout, const Fits &fits) {
  std::vector<const Operation *> found;
  for (const Family &family : layout.families()) {
    for (const Operation &operation : family.operations)
      if (fits(operation)) found.push_back(&operation);
  }
  return found;
}

}  // namespace

bool may_send(const Operation &operation, const SentRequest &request) {
  if (!sends_to(operation, request.module, request.message_type)) return false;
  uint32_t fixed = operation.request.fixed_length();
  bool is_open =
      operation.request.part_count > 0 && operation.request.parts().back().reaches_the_end();
  return (is_open ? request.length >= fixed : request.length == fixed) &&
         holds_constants(operation, request.bytes);
}

std::vector<const Operation *> senders_of(const SentRequest &request, const Layout &layout) {
  return all_that(layout, [&request](const Operation &one) { return may_send(one, request); });
}

std::vector<const Operation *> senders_of(uint32_t module, uint32_t message_type,
                                          const Layout &layout) {
  return all_that(layout,
                  [=](const Operation &one) { return sends_to(one, module, message_type); });
}

}  // namespace olt::catalog
