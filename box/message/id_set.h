/// Sets of VLANs and of ports: on the wire, as text, in listings.
#ifndef OLT_BOX_MESSAGE_ID_SET_H
#define OLT_BOX_MESSAGE_ID_SET_H

#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "box/message/message.h"
#include "box/state/archive.h"

namespace olt::box {

inline constexpr uint16_t kLastVlan = 4094;

/// Bit 0 is not used.
using IdSet = std::bitset<kLastVlan + 1>;

struct IdRange {
  uint16_t first;
  uint16_t last;
};

/// Whether first is not above last, and both are valid ids.
bool is_range(IdRange range);
IdSet ids_in(IdRange range);
IdSet ids_in(const std::vector<IdRange> &ranges);
std::vector<IdRange> ranges_of(const IdSet &ids);
/// The known ids in the ranges; nothing if some range holds no known id.
std::optional<IdSet> known_ids(const std::vector<IdRange> &ranges, const IdSet &known);

/// "1,10,20-25".
std::string ids_to_text(const IdSet &ids);
/// The same for a cell of a table: with a prefix before each range; "-" if empty.
std::string ids_to_cell(const IdSet &ids, std::string_view prefix = {});
/// The same for several cells, one below the other, each about as wide as given.
std::vector<std::string> ids_to_cells(const IdSet &ids, size_t width);
/// Describes a member that is a text as ids_to_text writes it.
void describe_ids(Archive &archive, std::string_view key, IdSet &ids);

/// The ranges given by VLAN elements; nothing if one of them is invalid.
template <typename Element>
std::optional<std::vector<IdRange>> read_ranges(const std::vector<Element> &elements) {
  std::vector<IdRange> ranges;
  ranges.reserve(elements.size());
  for (const Element &element : elements) {
    ranges.push_back({element.first, element.last == 0 ? element.first : element.last});
    if (!is_range(ranges.back())) return std::nullopt;
  }
  return ranges;
}

using VlanAction = std::function<Status(const Request &, const std::vector<IdRange> &)>;

/// A message to the main module: a head, then up to 4,094 VLAN elements.
Message vlan_message(uint32_t type, std::string_view name, size_t head, VlanAction act);

}  // namespace olt::box

#endif
