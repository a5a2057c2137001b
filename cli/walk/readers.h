/// The operations that read a row of an SNMP table, and how to find the next row.
#ifndef OLT_CLI_WALK_READERS_H
#define OLT_CLI_WALK_READERS_H

#include <span>
#include <string>
#include <vector>

namespace olt::cli {

struct Reader {
  const char *short_name;
  const char *name;  ///< of the operation
  /// The operation that finds the next row: it returns which one it read.
  const char *stepper;
  const char *part = nullptr;  ///< the part of an ONU that a row is about; null for the whole ONU
};

std::span<const Reader> readers();

/// By either name. Throws Error when there is no such reader.
const Reader &reader_named(const std::string &name);

/// All names, short ones first.
std::vector<std::string> reader_names();
/// The readers with summaries, as a section of the help.
std::string readers_text();

}  // namespace olt::cli

#endif
