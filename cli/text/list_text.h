/// Lists of VLANs and of authentication entries.
#ifndef OLT_CLI_TEXT_LIST_TEXT_H
#define OLT_CLI_TEXT_LIST_TEXT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"
#include "cli/text/items.h"
#include "oltmgmt.h"

namespace olt::cli {

// A BadValue that these throw begins with the item's place.

/// "10", "20-25", "10:uplink" with a description of at most longest_description bytes. Throws
/// BadValue.
std::vector<olt_vlan_node> read_vlans(std::span<const Item> items, size_t longest_description);

/// The same as single ids. Throws BadValue.
std::vector<uint16_t> read_vlan_ids(std::span<const Item> items);

/// Entries as words FIELD=VALUE, or as hex. Secrets given as '-' are asked for. Throws BadValue and
/// Error.
Bytes read_entries(std::span<const Item> items, const catalog::Argument &argument);

}  // namespace olt::cli

#endif
