/// The listings that operations name instead of returning.
#ifndef OLT_CLI_OUTPUT_LISTING_READER_H
#define OLT_CLI_OUTPUT_LISTING_READER_H

#include <filesystem>
#include <string>

namespace olt::cli {

/// Reads a listing. Throws Error.
std::string read_listing(const std::filesystem::path &folder, const std::string &name);

}  // namespace olt::cli

#endif
