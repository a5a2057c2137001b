#include "agent/standard_objects.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace olt::agent {

const Numbering kPortNumbers{0, {{1'000, 1, 99}, {1, 1, 999}}};
const Numbering kPonNumbers{100'000'000, {{1'000, 1, 99}, {1, 1, 999}}};
const Numbering kOnuNumbers{1'000'000'000, {{10'000'000, 1, 99}, {100'000, 1, 99}, {1, 1, 99'999}}};
const Numbering kBridgePortNumbers{-1'000, {{1'000, 1, 65}, {1, 1, 999}}};

namespace {

using Conversion = StandardRows::Conversion;
using Part = StandardRows::Part;

const Numbering kVlanNumbers{0, {{1, 1, 4094}}};
/// Of the only row of a group of scalars, whose index is 0.
const Numbering kBoxNumbers{1, {{1, 0, 0}}};

constexpr uint32_t kWordSize = 4;
constexpr int64_t kMegabit = 1'000'000;

struct NamedNumber {
  std::string_view label;
  int64_t value;
};

/// A column of a standard table, with what it takes from each part's source. Nothing: the layout
/// does not say it.
struct StandardColumn {
  const char *name;
  uint32_t arc;
  SmiType type;
  uint32_t size;
  std::vector<std::optional<Conversion>> from;
};

const Table *find_table(const std::vector<Table> &tables, std::string_view name) {
  auto found = std::find_if(tables.begin(), tables.end(),
                            [name](const Table &table) { return table.name == name; });
  return found == tables.end() ? nullptr : &*found;
}

Conversion constant(int64_t number) {
  return [number](const Key &, ByteView) { return Value{number}; };
}

Value text_value(std::string_view text) {
  return {0, {text.begin(), text.end()}};
}

Conversion text(std::string_view text) {
  return [value = text_value(text)](const Key &, ByteView) { return value; };
}

/// "ONU 1/2/3" of the row {1, 2, 3}.
Conversion row_name(std::string_view what) {
  return [what](const Key &row, ByteView) {
    return text_value(fmt::format("{}{}", what, fmt::join(row, "/")));
  };
}

Conversion number_of_row(const Numbering &numbering) {
  return [&numbering](const Key &row, ByteView) {
    return Value{numbering.number_of(row).value_or(0)};
  };
}

/// What conversions take from one enterprise table.
class Source {
 public:
  Source(const std::vector<Table> &tables, std::string_view name)
      : table_(find_table(tables, name)) {}

  bool is_there() const { return table_ != nullptr; }
  const Table &table() const { return *table_; }

  /// The value as it is.
  std::optional<Conversion> same(std::string_view column, SmiType type) const {
    const Column *from = find(column);
    if (from == nullptr || from->type != type) return std::nullopt;
    return [from = *from](const Key &, ByteView record) { return value_of(from, record); };
  }

  /// A number in that unit, times a factor, up to the largest value.
  std::optional<Conversion> number(std::string_view column, std::string_view unit, int64_t factor,
                                   int64_t max) const {
    const Column *from = find(column);
    if (from == nullptr || from->type != SmiType::kUnsigned32 || from->units != unit) {
      return std::nullopt;
    }
    return [from = *from, factor, max](const Key &, ByteView record) {
      return Value{std::min(value_of(from, record).number * factor, max)};
    };
  }

  /// An enumeration that has all the labels; what other numbers become.
  std::optional<Conversion> labelled(std::string_view column,
                                     std::initializer_list<NamedNumber> values,
                                     int64_t otherwise) const {
    const Column *from = find(column);
    if (from == nullptr) return std::nullopt;
    std::vector<std::pair<int64_t, int64_t>> numbers;
    for (const NamedNumber &value : values) {
      auto label = std::find_if(from->labels.begin(), from->labels.end(),
                                [&value](const Label &one) { return one.name == value.label; });
      if (label == from->labels.end()) return std::nullopt;
      numbers.emplace_back(label->value, value.value);
    }
    return [from = *from, numbers, otherwise](const Key &, ByteView record) {
      int64_t number = value_of(from, record).number;
      for (const auto &[given, standard] : numbers) {
        if (given == number) return Value{standard};
      }
      return Value{otherwise};
    };
  }

  /// The ports of either list.
  std::optional<Conversion> ports(std::string_view column, std::string_view other) const {
    auto one = same(column, SmiType::kPortList);
    auto two = same(other, SmiType::kPortList);
    if (!one || !two) return std::nullopt;
    return [one = *one, two = *two](const Key &row, ByteView record) {
      Value ports = one(row, record);
      Bytes more = two(row, record).octets;
      for (size_t i = 0; i < std::min(ports.octets.size(), more.size()); ++i) {
        ports.octets[i] |= more[i];
      }
      return ports;
    };
  }

 private:
  const Column *find(std::string_view name) const {
    if (table_ == nullptr) return nullptr;
    auto found = std::find_if(table_->columns.begin(), table_->columns.end(),
                              [name](const Column &column) { return column.name == name; });
    return found == table_->columns.end() ? nullptr : &*found;
  }

  const Table *table_;
};

struct SourcePart {
  const Source &source;
  std::optional<Numbering> numbering;
};

/// Builds the standard tables of a layout. Sources that the layout does not have take their parts
/// of tables with them.
class StandardBuilder {
 public:
  explicit StandardBuilder(const catalog::Layout &layout)
      : enterprise_(enterprise_tables(layout)),
        base_(enterprise_, "oltBase"),
        bridge_(enterprise_, "oltRstp"),
        bridge_state_(enterprise_, "oltRstpState"),
        bridge_port_(enterprise_, "oltRstpPort"),
        vlan_(enterprise_, "oltVlan"),
        port_(enterprise_, "oltBasicPort"),
        pon_(enterprise_, "oltPon"),
        onu_(enterprise_, "oltOnu") {}

  std::vector<Table> tables() {
    bridge();
    vlans();
    interfaces();
    epon();
    entities();
    return std::move(tables_);
  }

 private:
  void bridge() {
    add("dot1dBase", {1, 3, 6, 1, 2, 1, 17, 1}, true, {{base_, std::nullopt}},
        {{"dot1dBaseBridgeAddress",
          1,
          SmiType::kMacAddress,
          6,
          {base_.same("oltBaseMac", SmiType::kMacAddress)}}});
    add("dot1dStp", {1, 3, 6, 1, 2, 1, 17, 2}, true, {{bridge_, std::nullopt}},
        {{"dot1dStpProtocolSpecification",
          1,
          SmiType::kInteger32,
          kWordSize,
          {bridge_.labelled("oltRstpVersion", {{"stp", 3}, {"rstp", 3}}, 1)}},
         {"dot1dStpPriority",
          2,
          SmiType::kInteger32,
          kWordSize,
          {bridge_.number("oltRstpPriority", "", 1, 65'535)}},
         hundredths("dot1dStpBridgeMaxAge", 12, "oltRstpMaxAge"),
         hundredths("dot1dStpBridgeHelloTime", 13, "oltRstpHelloTime"),
         hundredths("dot1dStpBridgeForwardDelay", 14, "oltRstpForwardDelay"),
         {"dot1dStpVersion",
          16,
          SmiType::kInteger32,
          kWordSize,
          {bridge_.labelled("oltRstpVersion", {{"stp", 0}, {"rstp", 2}}, 2)}},
         {"dot1dStpTxHoldCount",
          17,
          SmiType::kInteger32,
          kWordSize,
          {bridge_.number("oltRstpHoldCount", "", 1, INT32_MAX)}}});
    add("dot1dStpPort", {1, 3, 6, 1, 2, 1, 17, 2, 15}, false, {{bridge_state_, kBridgePortNumbers}},
        {{"dot1dStpPort", 1, SmiType::kInteger32, kWordSize, {number_of_row(kBridgePortNumbers)}},
         {"dot1dStpPortPriority",
          2,
          SmiType::kInteger32,
          kWordSize,
          {bridge_state_.number("oltRstpStatePriority", "", 1, 255)}},
         {"dot1dStpPortState",
          3,
          SmiType::kInteger32,
          kWordSize,
          {bridge_state_.labelled(
              "oltRstpStateState",
              {{"down", 1}, {"discarding", 2}, {"learning", 4}, {"forwarding", 5}}, 6)}},
         {"dot1dStpPortPathCost",
          5,
          SmiType::kInteger32,
          kWordSize,
          {bridge_state_.number("oltRstpStatePathCost", "", 1, 65'535)}},
         {"dot1dStpPortPathCost32",
          11,
          SmiType::kInteger32,
          kWordSize,
          {bridge_state_.number("oltRstpStatePathCost", "", 1, 200'000'000)}}});
    add("dot1dStpExtPort", {1, 3, 6, 1, 2, 1, 17, 2, 19}, false,
        {{bridge_port_, kBridgePortNumbers}},
        {{"dot1dStpPortAdminEdgePort",
          2,
          SmiType::kInteger32,
          kWordSize,
          {bridge_port_.labelled("oltRstpPortEdge", {{"yes", 1}, {"no", 2}}, 1)}},
         {"dot1dStpPortAdminPointToPoint",
          4,
          SmiType::kInteger32,
          kWordSize,
          {bridge_port_.labelled("oltRstpPortPointToPoint", {{"yes", 0}, {"no", 1}}, 0)}},
         {"dot1dStpPortAdminPathCost",
          6,
          SmiType::kInteger32,
          kWordSize,
          {bridge_port_.number("oltRstpPortPathCost", "", 1, 200'000'000)}}});
  }

  StandardColumn hundredths(const char *name, uint32_t arc, std::string_view source) const {
    return {
        name, arc, SmiType::kInteger32, kWordSize, {bridge_.number(source, "s", 100, INT32_MAX)}};
  }

  void vlans() {
    add("dot1qVlanStatic", {1, 3, 6, 1, 2, 1, 17, 7, 1, 4, 3}, false, {{vlan_, kVlanNumbers}},
        {{"dot1qVlanStaticName",
          1,
          SmiType::kText,
          32,
          {vlan_.same("oltVlanDescription", SmiType::kText)}},
         {"dot1qVlanStaticEgressPorts",
          2,
          SmiType::kOctets,
          kWordSize,
          {vlan_.ports("oltVlanTaggedPorts", "oltVlanUntaggedPorts")}},
         {"dot1qVlanStaticUntaggedPorts",
          4,
          SmiType::kOctets,
          kWordSize,
          {vlan_.same("oltVlanUntaggedPorts", SmiType::kPortList)}},
         {"dot1qVlanStaticRowStatus", 5, SmiType::kInteger32, kWordSize, {constant(1)}}});
  }

  void interfaces() {
    const std::vector<SourcePart> all = {
        {port_, kPortNumbers}, {pon_, kPonNumbers}, {onu_, kOnuNumbers}};
    constexpr int64_t kEthernet = 6;
    constexpr int64_t kUnknown = 4;
    add("if", {1, 3, 6, 1, 2, 1, 2, 2}, false, all,
        {{"ifIndex",
          1,
          SmiType::kInteger32,
          kWordSize,
          {number_of_row(kPortNumbers), number_of_row(kPonNumbers), number_of_row(kOnuNumbers)}},
         {"ifDescr",
          2,
          SmiType::kText,
          64,
          {row_name("Ethernet port "), row_name("PON interface "), row_name("ONU ")}},
         {"ifType",
          3,
          SmiType::kInteger32,
          kWordSize,
          {constant(kEthernet), constant(kEthernet), constant(kEthernet)}},
         {"ifSpeed",
          5,
          SmiType::kUnsigned32,
          kWordSize,
          {port_.number("oltBasicPortLinkSpeed", "Mbit/s", kMegabit, UINT32_MAX), constant(0),
           constant(0)}},
         {"ifAdminStatus",
          7,
          SmiType::kInteger32,
          kWordSize,
          {port_.labelled("oltBasicPortPortEnable", {{"on", 1}, {"off", 2}}, 1), constant(1),
           onu_.labelled("oltOnuState", {{"up", 1}, {"away", 1}, {"blocked", 2}}, 1)}},
         {"ifOperStatus",
          8,
          SmiType::kInteger32,
          kWordSize,
          {port_.labelled("oltBasicPortLinkState", {{"up", 1}, {"down", 2}}, kUnknown),
           constant(kUnknown),
           onu_.labelled("oltOnuState", {{"up", 1}, {"away", 2}, {"blocked", 2}}, kUnknown)}}});
    tables_.back().is_of_host = true;
    add("ifX", {1, 3, 6, 1, 2, 1, 31, 1, 1}, false, all,
        {{"ifName", 1, SmiType::kText, 64, {row_name("eth"), row_name("pon"), row_name("onu")}},
         {"ifHighSpeed",
          15,
          SmiType::kUnsigned32,
          kWordSize,
          {port_.number("oltBasicPortLinkSpeed", "Mbit/s", 1, UINT32_MAX), constant(0),
           constant(0)}},
         {"ifAlias",
          18,
          SmiType::kText,
          64,
          {text(""), text(""), onu_.same("oltOnuDescription", SmiType::kText)}}});
    tables_.back().is_of_host = true;
    add("dot3Stats", {1, 3, 6, 1, 2, 1, 10, 7, 2}, false, {{port_, kPortNumbers}},
        {{"dot3StatsDuplexStatus",
          19,
          SmiType::kInteger32,
          kWordSize,
          {port_.labelled("oltBasicPortLinkDuplex", {{"none", 1}, {"half", 2}, {"full", 3}}, 1)}}});
    tables_.back().is_of_host = true;
  }

  void epon() {
    constexpr int64_t kOltMode = 1;
    add("dot3MpcpControl", {1, 3, 6, 1, 2, 1, 155, 1, 1, 1}, false, {{onu_, kOnuNumbers}},
        {{"dot3MpcpOperStatus",
          1,
          SmiType::kInteger32,
          kWordSize,
          {onu_.labelled("oltOnuState", {{"up", 1}, {"away", 2}, {"blocked", 2}}, 2)}},
         {"dot3MpcpAdminState",
          2,
          SmiType::kInteger32,
          kWordSize,
          {onu_.labelled("oltOnuState", {{"up", 1}, {"away", 1}, {"blocked", 2}}, 1)}},
         {"dot3MpcpMode", 3, SmiType::kInteger32, kWordSize, {constant(kOltMode)}},
         {"dot3MpcpRemoteMACAddress",
          6,
          SmiType::kMacAddress,
          6,
          {onu_.same("oltOnuMac", SmiType::kMacAddress)}},
         {"dot3MpcpRegistrationState",
          7,
          SmiType::kInteger32,
          kWordSize,
          {onu_.labelled("oltOnuState", {{"up", 3}, {"away", 1}, {"blocked", 1}}, 1)}}});
  }

  /// ONUs are boxes of their own: no part of another one.
  void entities() {
    constexpr int64_t kBox = 1;
    constexpr int64_t kNothing = 0;
    constexpr int64_t kChassis = 3;
    constexpr int64_t kPort = 10;
    constexpr int64_t kNoPosition = -1;
    add("entPhysical", {1, 3, 6, 1, 2, 1, 47, 1, 1, 1}, false,
        {{base_, kBoxNumbers}, {pon_, kPonNumbers}, {onu_, kOnuNumbers}},
        {{"entPhysicalDescr",
          2,
          SmiType::kText,
          64,
          {text("OLT"), row_name("PON interface "), row_name("ONU ")}},
         {"entPhysicalContainedIn",
          4,
          SmiType::kInteger32,
          kWordSize,
          {constant(kNothing), constant(kBox), constant(kNothing)}},
         {"entPhysicalClass",
          5,
          SmiType::kInteger32,
          kWordSize,
          {constant(kChassis), constant(kPort), constant(kChassis)}},
         {"entPhysicalParentRelPos",
          6,
          SmiType::kInteger32,
          kWordSize,
          {constant(kNoPosition), [](const Key &row, ByteView) { return Value{row.back()}; },
           constant(kNoPosition)}},
         {"entPhysicalName",
          7,
          SmiType::kText,
          64,
          {text("olt"), row_name("pon"), row_name("onu")}}});
  }

  /// Scalars are a group each: a region for all of them would have tables in it.
  void add(const char *name, const Oid &oid, bool is_scalar, const std::vector<SourcePart> &sources,
           const std::vector<StandardColumn> &columns) {
    if (!is_scalar) {
      add_table(name, oid, false, sources, columns);
      return;
    }
    for (const StandardColumn &column : columns) add_table(name, oid, true, sources, {column});
  }

  /// Leaves out the parts whose source the layout lacks, and the columns that a part cannot fill.
  void add_table(const char *name, const Oid &oid, bool is_scalar,
                 const std::vector<SourcePart> &sources,
                 const std::vector<StandardColumn> &columns) {
    std::vector<Part> parts;
    for (const SourcePart &from : sources) {
      if (from.source.is_there()) parts.push_back({from.source.table(), from.numbering, {}});
    }
    Table table{.name = name, .is_scalar = is_scalar, .arc = oid.back()};
    uint32_t offset = 0;
    for (const StandardColumn &column : columns) {
      std::vector<Conversion> conversions;
      for (size_t i = 0; i < sources.size(); ++i) {
        if (sources[i].source.is_there() && column.from[i]) conversions.push_back(*column.from[i]);
      }
      if (conversions.size() != parts.size() || parts.empty()) continue;
      for (size_t i = 0; i < parts.size(); ++i) {
        parts[i].columns.push_back(std::move(conversions[i]));
      }
      table.columns.push_back({.name = column.name,
                               .arc = column.arc,
                               .type = column.type,
                               .size = column.size,
                               .field = {.name = column.name,
                                         .offset = offset,
                                         .width = column.size,
                                         .kind = catalog::FieldKind::kBytes}});
      offset += column.size;
    }
    if (table.columns.empty()) return;
    table.place = oid;
    table.reader = parts[0].source.reader;
    table.rows = std::make_shared<StandardRows>(table.columns, std::move(parts));
    tables_.push_back(std::move(table));
  }

  std::vector<Table> enterprise_;
  Source base_;
  Source bridge_;
  Source bridge_state_;
  Source bridge_port_;
  Source vlan_;
  Source port_;
  Source pon_;
  Source onu_;
  std::vector<Table> tables_;
};

}  // namespace

std::optional<uint32_t> Numbering::number_of(const Key &row) const {
  if (row.size() != digits.size()) return std::nullopt;
  int64_t number = base;
  for (size_t i = 0; i < row.size(); ++i) {
    if (row[i] < digits[i].first || row[i] > digits[i].last) return std::nullopt;
    number += int64_t{row[i]} * digits[i].place;
  }
  return static_cast<uint32_t>(number);
}

std::optional<Key> Numbering::row_at(uint32_t number) const {
  int64_t rest = number - base;
  int64_t last = 0;
  for (const Digit &digit : digits) last += int64_t{digit.last} * digit.place;
  if (rest < 0) return Key{};
  if (rest > last) return std::nullopt;
  Key row;
  for (const Digit &digit : digits) {
    row.push_back(static_cast<uint32_t>(rest / digit.place));
    rest %= digit.place;
  }
  return row;
}

Answer StandardRows::read(const RowReader &reader, Selection selection, const Key &key) const {
  for (const Part &part : parts_) {
    Answer answer =
        selection == Selection::kThis ? read_this(reader, part, key) : read_next(reader, part, key);
    if (answer.outcome != Outcome::kNone) return answer;
  }
  return {Outcome::kNone};
}

Answer StandardRows::read_this(const RowReader &reader, const Part &part, const Key &key) const {
  std::optional<Key> row = key;
  if (part.numbering) {
    if (key.size() != 1) return {Outcome::kNone};
    row = part.numbering->row_at(key[0]);
    if (!row || part.numbering->number_of(*row) != key[0]) return {Outcome::kNone};
  }
  Answer answer = reader.read(part.source, Selection::kThis, *row);
  if (answer.outcome == Outcome::kFound) answer.row = {key, converted(part, answer.row)};
  return answer;
}

Answer StandardRows::read_next(const RowReader &reader, const Part &part, const Key &key) const {
  std::optional<Key> after = key;
  if (part.numbering && !key.empty()) after = part.numbering->row_at(key[0]);
  while (after) {
    Answer answer = reader.read(part.source, Selection::kNext, *after);
    if (answer.outcome != Outcome::kFound) return answer;
    after = answer.row.key;
    std::optional<Key> index = after;
    if (part.numbering) {
      std::optional<uint32_t> number = part.numbering->number_of(*after);
      index = number ? std::optional(Key{*number}) : std::nullopt;
    }
    if (!index) continue;  // has no number
    answer.row = {*index, converted(part, answer.row)};
    return answer;
  }
  return {Outcome::kNone};
}

Bytes StandardRows::converted(const Part &part, const Row &row) const {
  Bytes record;
  for (size_t i = 0; i < columns_.size(); ++i) {
    Value value = part.columns[i](row.key, row.record);
    if (is_number(columns_[i].type)) {
      auto number = static_cast<uint32_t>(value.number);
      const auto *bytes = reinterpret_cast<const uint8_t *>(&number);
      record.insert(record.end(), bytes, bytes + sizeof number);
      continue;
    }
    value.octets.resize(columns_[i].size);
    record.insert(record.end(), value.octets.begin(), value.octets.end());
  }
  return record;
}

std::vector<Table> standard_tables(const catalog::Layout &layout) {
  return StandardBuilder(layout).tables();
}

}  // namespace olt::agent
