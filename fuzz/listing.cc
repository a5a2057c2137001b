// Listings. One that is taken apart is written again as the same bytes, and what it is taken apart
// into can be written and read again. It does not differ from itself; from half of it, in lines.
#include "base/listing.h"

#include <algorithm>
#include <string>

#include "cli/compare/listings.h"
#include "fuzz/target.h"

namespace {

using olt::ListingContent;
using olt::ListingSection;
using olt::Rule;
using olt::TableRow;
using olt::fuzz::Input;
using olt::fuzz::require;

void require_table(const ListingSection &section) {
  require(!section.heading.empty(), "a section has a heading");
  if (section.rule == Rule::kNone) return;
  require(!section.table.empty(), "a rule is below names");
  for (const TableRow &row : section.table) {
    require(row.size() == section.table[0].size(), "each row has a cell for each column",
            section.heading);
  }
}

bool are_same(const ListingSection &one, const ListingSection &other) {
  return one.heading == other.heading && one.rule == other.rule && one.table == other.table;
}

void compare(const std::string &text) {
  require(olt::cli::listing_differences(text, text).empty(), "a listing equals itself", text);
  for (const auto &difference : olt::cli::listing_differences(text, text.substr(text.size() / 2))) {
    olt::fuzz::require_line(difference.field);
    olt::fuzz::require_line(difference.recorded.text);
    olt::fuzz::require_line(difference.now.text);
  }
}

}  // namespace

// The input is the text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::string_view text = Input(data, size).text();
  compare(std::string(text));
  std::optional<ListingContent> content = olt::read_listing_text(text);
  if (!content) return 0;
  require(!content->title.empty(), "a listing has a title");
  std::string written = olt::listing_text(*content);
  require(written == text, "a listing is written as it was read", written);
  for (const ListingSection &section : content->sections) require_table(section);
  std::optional<ListingContent> again = olt::read_listing_text(written);
  require(again && std::equal(again->sections.begin(), again->sections.end(),
                              content->sections.begin(), content->sections.end(), are_same),
          "what was written is read as the same", written);
  return 0;
}
