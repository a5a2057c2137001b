/// How much room text takes on a terminal.
#ifndef OLT_BASE_WIDTH_H
#define OLT_BASE_WIDTH_H

#include <cstddef>
#include <string_view>

namespace olt {

struct Character {
  size_t bytes;
  size_t columns;
};

/// The character at the beginning of a text in UTF-8, which must not be empty. A byte that is not
/// UTF-8 is a character of one column, as is a control character.
Character first_character(std::string_view text);

/// Columns that the text takes: two for a wide character, none for a combining one.
size_t display_width(std::string_view text);

/// The longest beginning of the text that takes at most so many columns.
std::string_view fitting(std::string_view text, size_t columns);

}  // namespace olt

#endif
