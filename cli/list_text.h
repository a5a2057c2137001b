/// Lists as people write them: VLANs and authentication entries.
#ifndef OLT_CLI_LIST_TEXT_H
#define OLT_CLI_LIST_TEXT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"
#include "oltmgmt.h"

namespace olt::cli {

/// One item of a list, and where it stands: "item 2" or "line 3".
struct Item {
  std::string place;
  std::string text;
};

/// What is wrong with an item, with its place in front.
class BadItem : public std::runtime_error {
 public:
  BadItem(const Item &item, const std::string &reason)
      : std::runtime_error(item.place + ": " + reason) {}
};

/// The items of one word. An empty word has none.
std::vector<Item> split_items(std::string_view text, char separator);

/// The lines of a file but for blank ones and comments, which begin with '#'.
std::vector<Item> split_lines(std::string_view content);

/// "10", "20-25", "10:uplink" with a description of at most so many bytes. Throws BadItem.
std::vector<olt_vlan_node> read_vlans(std::span<const Item> items, size_t longest_description);

/// The same as single ids. Throws BadItem.
std::vector<uint16_t> read_vlan_ids(std::span<const Item> items);

/// Entries as words FIELD=VALUE, or as hex. Secrets given as '-' are asked for. Throws BadItem and
/// Error.
Bytes read_entries(std::span<const Item> items, const catalog::Argument &argument);

}  // namespace olt::cli

#endif
