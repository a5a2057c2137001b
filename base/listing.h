/// Listings: a title, and sections with a table each. The box writes them as text, and tools read
/// that text again.
///
///   listing = title LF "="... LF section...        as many "=" as the title has bytes
///   section = LF heading LF table                  the table is that of table_text()
///
/// Titles, headings, names of columns and lines of a table are not empty. The columns of a table
/// have different names.
#ifndef OLT_BASE_LISTING_H
#define OLT_BASE_LISTING_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/table.h"

namespace olt {

struct ListingSection {
  std::string heading;
  std::vector<TableRow> table;  ///< with a rule, its first row names the columns
  Rule rule = Rule::kNone;
};

struct ListingContent {
  std::string title;
  std::vector<ListingSection> sections;
};

std::string listing_text(const ListingContent &content);

/// The reverse; nothing when listing_text() does not write that text of anything.
///
/// Below a rule, each row has a cell for each column, which may be empty; blanks at the end of a
/// cell are lost. In a table without a rule, a column begins where the lines that are long enough
/// all have two blanks before it: what two blanks divide in all of its rows are two cells.
std::optional<ListingContent> read_listing_text(std::string_view text);

}  // namespace olt

#endif
