/// What each byte of a message is called, and which argument it belongs to.
#ifndef OLT_CATALOG_MESSAGE_FIELDS_H
#define OLT_CATALOG_MESSAGE_FIELDS_H

#include <cstdint>
#include <span>
#include <vector>

#include "catalog/operation.h"

namespace olt::catalog {

/// A field with its offset in the message.
struct MessageField {
  Field field;
  const Argument *argument = nullptr;  ///< null for what the operation or the module adds
};

/// The fields of one of the operation's messages, without gaps from offset 0. Those of a reply
/// name all bytes of its record, also behind the last one that the operation reads.
std::vector<MessageField> fields_of(const Operation &operation, const Message &message);

/// Whether the request changes what the modules keep or do. One that does not only reads: it may be
/// sent at any time.
bool changes(const Operation &operation, std::span<const uint8_t> request);

}  // namespace olt::catalog

#endif
