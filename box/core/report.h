/// The text of a listing.
#ifndef OLT_BOX_CORE_REPORT_H
#define OLT_BOX_CORE_REPORT_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/listing.h"

namespace olt::box {

/// A text with a title and sections; each section is a table with aligned columns.
class Report {
 public:
  explicit Report(std::string title) : content_{std::move(title), {}} {}

  /// Begins a section, to which the following rows belong. Columns need no headings.
  void section(std::string heading, std::vector<std::string> columns = {});
  void row(std::vector<std::string> cells);
  /// Rows of 16 bytes: offset, hex, characters.
  void dump(std::span<const uint8_t> bytes);

  std::string text() const { return listing_text(content_); }

 private:
  ListingContent content_;
};

}  // namespace olt::box

#endif
