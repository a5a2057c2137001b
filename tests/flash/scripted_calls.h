/// Replaces the system calls of the flash operations: records each call and answers as scripted.
#ifndef OLT_TESTS_FLASH_SCRIPTED_CALLS_H
#define OLT_TESTS_FLASH_SCRIPTED_CALLS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/bytes.h"

namespace olt::test {

using Lines = std::vector<std::string>;

/// During its lifetime, receives every open, ioctl, lseek, read, write and close of this thread.
/// All of them succeed completely unless scripted otherwise; open returns descriptor 7.
class ScriptedCalls {
 public:
  ScriptedCalls();
  ScriptedCalls(const ScriptedCalls &) = delete;
  ScriptedCalls &operator=(const ScriptedCalls &) = delete;
  ~ScriptedCalls();

  /// Makes the call at this place, counted from 0 over all calls, only return the result.
  ScriptedCalls &answer(size_t place, int result);

  /// What every read returns, from its first byte.
  Bytes contents;

  /// One line for each call: "open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000",
  /// "lseek 7 0x010000 0", "read 7 524", "write 7 524", "close 7".
  Lines lines;

  /// The data of each write.
  std::vector<Bytes> written;

  /// Records the call. @return its result
  int64_t take(const std::string &line, int64_t result);

 private:
  std::map<size_t, int> answers_;
};

}  // namespace olt::test

#endif
