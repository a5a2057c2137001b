/// Stands in for the system calls of the flash operations: writes down each one as the operation
/// makes it and answers as the test wants.
#ifndef OLT_TESTS_FLASH_SCRIPTED_CALLS_H
#define OLT_TESTS_FLASH_SCRIPTED_CALLS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace olt::tests {

using Lines = std::vector<std::string>;
using Bytes = std::vector<uint8_t>;

/// While it lives, every open, ioctl, lseek, read, write and close of this thread ends here. All
/// of them succeed in full, unless told otherwise: opening gives descriptor 7.
class ScriptedCalls {
 public:
  ScriptedCalls();
  ScriptedCalls(const ScriptedCalls &) = delete;
  ScriptedCalls &operator=(const ScriptedCalls &) = delete;
  ~ScriptedCalls();

  /// The call at this place, counted from 0 over all calls, returns the result and does nothing.
  ScriptedCalls &answer(size_t place, int result);

  /// What read delivers, from its first byte, each time.
  Bytes contents;

  /// One line for each call: "open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000",
  /// "lseek 7 0x010000 0", "read 7 524", "write 7 524", "close 7".
  Lines lines;

  /// What write was given, one entry for each call.
  std::vector<Bytes> written;

  /// Writes the call down. @return the result it is to have
  int64_t take(const std::string &line, int64_t result);

 private:
  std::map<size_t, int> answers_;
};

}  // namespace olt::tests

#endif
