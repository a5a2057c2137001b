/// The operations that read a row of an SNMP table, and how to walk along its rows.
#ifndef OLT_CLI_WALK_READERS_H
#define OLT_CLI_WALK_READERS_H

#include <string>
#include <vector>

namespace olt::cli {

struct Reader {
  const char *name;
  /// The operation that finds the next row: it returns which one it read.
  const char *stepper;
  const char *part = nullptr;  ///< what the rows are of, when not of an ONU as a whole
};

/// Throws Error when there is no such reader.
const Reader &reader_named(const std::string &name);

std::vector<std::string> reader_names();
/// The same with what they read, as a section of the manual.
std::string readers_text();

}  // namespace olt::cli

#endif
