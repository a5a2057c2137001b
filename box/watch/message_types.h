/// The message types of the library's operations.
#ifndef OLT_BOX_WATCH_MESSAGE_TYPES_H
#define OLT_BOX_WATCH_MESSAGE_TYPES_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace olt::box {

/// The type that the operation sends; nothing if no operation that sends has this name.
std::optional<uint32_t> message_type_of(std::string_view operation);

}  // namespace olt::box

#endif
