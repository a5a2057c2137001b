/// Reply records in the hands of callers.
#ifndef OLT_PLATFORM_REPLIES_H
#define OLT_PLATFORM_REPLIES_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace olt::platform {

struct FreeBlock {
  void operator()(std::byte *block) const { std::free(block); }
};
using ReplyBlock = std::unique_ptr<std::byte, FreeBlock>;

/// A zeroed block for a reply of the given length; null when there is no memory. Longer than the
/// reply: callers read records of fixed size and texts up to their zero from it, and trust the
/// module to have sent them.
ReplyBlock make_reply_block(size_t length);

/// Keeps a reply until IPC_Free. @return its handle, never 0. Throws std::bad_alloc.
uint32_t hand_out(ReplyBlock reply);

}  // namespace olt::platform

#endif
