/// What each byte of a message is called, and which argument it belongs to.
#ifndef OLT_CATALOG_MESSAGE_FIELDS_H
#define OLT_CATALOG_MESSAGE_FIELDS_H

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

}  // namespace olt::catalog

#endif
