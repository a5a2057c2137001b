/// Whole files, and the standard output.
#ifndef OLT_CLI_TEXT_FILE_H
#define OLT_CLI_TEXT_FILE_H

#include <sys/types.h>

#include <cstddef>
#include <exception>
#include <string>
#include <system_error>

#include "base/text.h"

namespace olt::cli {

/// Reads a file of at most that many bytes; a longer one is EFBIG. The error, if any, says why
/// nothing is returned.
std::string read_file(const std::string &path, size_t max, std::error_code &error);

/// Replaces a file at once, or leaves it unchanged on failure. The new file gets the old one's
/// permissions, except those that mask lacks. A device or a pipe is written in place.
std::error_code write_file(const std::string &path, ByteView bytes, mode_t mask = 07777);

/// Nobody reads the standard output any more.
struct ReaderGone : std::exception {
  const char *what() const noexcept override { return "nobody reads the output"; }
};

/// Writes to standard output. Throws Error when that fails, and ReaderGone.
void print(const std::string &text);

}  // namespace olt::cli

#endif
