/// Lists as separate items: of one word, or of a file with one a line.
#ifndef OLT_CLI_TEXT_ITEMS_H
#define OLT_CLI_TEXT_ITEMS_H

#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

/// One item of a list, and where it stands: "item 2" or "line 3".
struct Item {
  std::string place;
  std::string text;
};

/// The items of one word. An empty word has none.
std::vector<Item> split_items(std::string_view text, char separator);

/// The lines of a file except blank ones and comments, which begin with '#'.
std::vector<Item> split_lines(std::string_view content);

}  // namespace olt::cli

#endif
