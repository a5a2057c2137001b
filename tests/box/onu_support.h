/// Requests of the PON side, and a small box for them.
#ifndef OLT_TESTS_BOX_ONU_SUPPORT_H
#define OLT_TESTS_BOX_ONU_SUPPORT_H

#include <string>
#include <string_view>

#include "tests/box/support.h"

namespace olt::test {

/// Two PON interfaces with four ONUs each.
class SmallPon : public TestBox {
 public:
  SmallPon();

  /// The listing of an interface, and of what a target names.
  std::string list_interface(uint32_t type, uint32_t interface);
  std::string list_target(uint32_t type, const Bytes &target);
};

/// Names an ONU or a part of it. The bytes that the box must ignore are not zero.
Bytes target(uint32_t interface, uint32_t onu, uint32_t part = 0);
/// The target followed by more bytes.
Bytes target_with(const Bytes &target, const Bytes &tail);

/// Names an interface in words 0 and 1 of its request.
Bytes interface_record(uint32_t interface);
/// Names an interface in words 1 and 2, as requests for listings do.
Bytes listed_interface(uint32_t interface);
/// Sets the authentication mode of an interface.
Bytes mode_record(uint32_t interface, uint32_t mode);

/// An entry of an allow list, or of the block list.
Bytes auth_entry(std::string_view mac, std::string_view loid = {}, std::string_view password = {});
/// An interface followed by entries.
Bytes auth_entries(uint32_t interface, std::initializer_list<Bytes> entries);

}  // namespace olt::test

#endif
