/// The listings that operations name instead of returning.
#ifndef OLT_CLI_LISTING_READER_H
#define OLT_CLI_LISTING_READER_H

#include <filesystem>
#include <string>

#include "base/text.h"

namespace olt::cli {

/// The name in a 32-byte field, which need not end with a zero.
std::string listing_name(ByteView field);

/// Reads a listing. Throws Error.
std::string read_listing(const std::filesystem::path &folder, const std::string &name);

}  // namespace olt::cli

#endif
