/// Result files: readable tables, written whole under names that are never used again.
#ifndef OLT_BOX_CORE_LISTING_H
#define OLT_BOX_CORE_LISTING_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/table.h"
#include "box/state/files.h"

namespace olt::box {

/// A titled text of sections, each a table with aligned columns.
class Report {
 public:
  explicit Report(std::string title) : title_(std::move(title)) {}

  /// Begins a section; rows that follow belong to it. The columns may go without headings.
  void section(std::string heading, std::vector<std::string> columns = {});
  void row(std::vector<std::string> cells);
  /// Rows of 16 bytes: offset, hex, characters.
  void dump(std::span<const uint8_t> bytes);

  std::string text() const;

 private:
  struct Section {
    std::string heading;
    std::vector<TableRow> rows;
    Rule rule;
  };

  std::string title_;
  std::vector<Section> sections_;
};

/// The listings in one directory.
class Listings {
 public:
  Listings(std::filesystem::path directory, std::optional<gid_t> group);

  /// Writes the text into a new file KIND-NUMBER.txt; the oldest file goes when there are too
  /// many. @return the file's name, at most 31 characters. Throws StorageFailure.
  std::string write(std::string_view kind, std::string_view text);

 private:
  void look_around();

  std::filesystem::path directory_;
  Placement placement_;
  std::optional<uint32_t> last_number_;
  std::multimap<uint32_t, std::string> names_;
};

}  // namespace olt::box

#endif
