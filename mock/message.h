/// Requests and replies of operations as named fields.
#ifndef OLT_MOCK_MESSAGE_H
#define OLT_MOCK_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "catalog/message_fields.h"
#include "catalog/operation.h"

namespace olt::mock {

/// Bytes at the place of a field in a message.
struct Piece {
  catalog::Field field;  ///< with its offset in the message
  Bytes bytes;
  bool up_to_zero = false;  ///< bytes after a zero do not matter
};

/// What is said of a message, or what it holds.
struct Content {
  std::vector<Piece> pieces;
  std::optional<uint32_t> module;  ///< where the caller names it
  std::optional<size_t> length;
};

/// The operation that sends this request, or null. An operation's constants are part of its
/// request.
const catalog::Operation *operation_of(uint32_t message_type, uint32_t module, ByteView request);

/// Which message of an operation is meant.
enum class Side : uint8_t { kRequest, kReply };

const catalog::Message &message_of(const catalog::Operation &operation, Side side);

/// What words NAME=VALUE say. Throws BadInput.
Content content_named(const catalog::Operation &operation, Side side, std::string_view words);

/// All bytes of a request except those that the operation leaves uninitialized.
Content content_of_request(const catalog::Operation &operation, ByteView request);

/// The message with this content and zeros elsewhere.
Bytes reply_with(const catalog::Operation &operation, const Content &content);

/// The lines that say where a request differs: "port: 4 sent; expected 3".
std::vector<std::string> differences(const Content &expected, uint32_t module, ByteView request);

/// The arguments of a request as words NAME=VALUE, each after a blank.
std::string words_of(const catalog::Operation &operation, uint32_t module, ByteView request);

}  // namespace olt::mock

#endif
