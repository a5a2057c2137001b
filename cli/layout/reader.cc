#include "cli/layout/reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "cli/layout/json_value.h"
#include "cli/text/field_forms.h"
#include "cli/text/number_text.h"
#include "oltmgmt.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Extent;
using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::Role;
using catalog::ValueName;

namespace {

/// The deepest: values, in a field, in a list, in a record, in a field, in a list.
constexpr size_t kDeepest = 8;
constexpr size_t kLongestName = 31;
constexpr size_t kLongestText = 63;
constexpr uint32_t kMaxDecimals = 9;
/// The longest message.
constexpr uint32_t kLongestBlock = UINT16_MAX;
constexpr std::string_view kReserved = "reserved_";

// Kinds of fields.

enum class Width : uint8_t {
  kFixed,
  kWord,      ///< 1, 2 or 4
  kMultiple,  ///< of the number
  kRest,      ///< all that follows when it is left out
  kNone,      ///< not a kind of fields in layouts
};

/// How wide the fields of a kind are.
struct KindRule {
  Width width;
  uint32_t number = 1;
};

/// In the order of FieldKind.
constexpr KindRule kRules[] = {
    {Width::kMultiple},     // text
    {Width::kMultiple},     // padded
    {Width::kNone},         // listing
    {Width::kWord},         // number
    {Width::kWord},         // vlan
    {Width::kWord},         // signed
    {Width::kWord},         // flags
    {Width::kWord},         // duration
    {Width::kWord},         // ports
    {Width::kMultiple, 4},  // numbers
    {Width::kMultiple, 2},  // vlans
    {Width::kFixed, 6},     // mac
    {Width::kFixed, 4},     // ipv4
    {Width::kFixed, 8},     // interface
    {Width::kFixed, 12},    // ont
    {Width::kMultiple},     // version
    {Width::kRest},         // records
    {Width::kRest},         // bytes
};
static_assert(std::size(kRules) == static_cast<size_t>(FieldKind::kBytes) + 1);

const KindRule &rule_of(FieldKind kind) {
  return kRules[static_cast<size_t>(kind)];
}

FieldKind kind_named(const JsonValue &value, bool is_inner) {
  std::vector<std::string_view> names;
  std::string given = value.text();
  for (const FieldForm &form : field_forms()) {
    bool is_possible =
        rule_of(form.kind).width != Width::kNone && !(is_inner && form.kind == FieldKind::kRecords);
    if (!is_possible) continue;
    if (form.name == given) return form.kind;
    names.emplace_back(form.name);
  }
  value.refuse(fmt::format("{}", fmt::join(names, ", ")));
}

/// @param room bytes up to the record's end
uint32_t width_of(const JsonValue &field, const Field &read, uint32_t room, const Extent &extent) {
  const KindRule &rule = rule_of(read.kind);
  std::optional<JsonValue> given = field.find("width");
  if (rule.width == Width::kFixed) {
    if (given) given->number(rule.number, rule.number);
    return rule.number;
  }
  uint32_t unit = read.kind == FieldKind::kRecords ? read.record_size : rule.number;
  if (rule.width == Width::kRest && !given) {
    if (extent.is_open) return Field::kToTheEnd;
    if (extent.size != 0) return room - room % unit;
  }
  uint32_t width = field.at("width").number(1, kLongestBlock);
  if (rule.width == Width::kWord && width != 1 && width != 2 && width != 4) {
    given->refuse("1, 2 or 4");
  }
  if (width % unit != 0) given->refuse(fmt::format("a multiple of {}", unit));
  return width;
}

// Names and texts.

bool is_identifier(std::string_view text, std::string_view others) {
  auto fits = [others](unsigned char c) {
    return std::isalnum(c) != 0 || others.find(static_cast<char>(c)) != std::string_view::npos;
  };
  return !text.empty() && text.size() <= kLongestName &&
         std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
         std::all_of(text.begin(), text.end(), fits);
}

std::string identifier(const JsonValue &value, std::string_view others) {
  std::string text = value.text();
  if (!is_identifier(text, others)) {
    value.refuse(fmt::format("a letter, then at most {} letters, digits or {}", kLongestName - 1,
                             fmt::join(others, " ")));
  }
  return text;
}

std::string short_text(const JsonValue &value) {
  std::string text = value.text();
  if (text.empty() || text.size() > kLongestText || printable(text) != text) {
    value.refuse(fmt::format("a text of 1 to {} printable characters", kLongestText));
  }
  return text;
}

/// A number that is a member's name.
uint32_t number_in_name(const std::string &name, const JsonValue &value, uint32_t min,
                        uint32_t max) {
  std::optional<uint32_t> number = number_in(name, max);
  if (!number || *number < min) {
    value.refuse(fmt::format("'{}' is no such number", printable(name)),
                 fmt::format("a number from {} to {}", min, max));
  }
  return *number;
}

/// The name of bytes that no field names.
std::string reserved_name(uint32_t offset) {
  return fmt::format("{}{:02x}", kReserved, offset);
}

// Firmware updates.

catalog::ImagePieces pieces_in(const JsonValue &pieces) {
  pieces.take_only({"head_size", "length_offset", "position_offset", "piece_size", "max_size",
                    "progress_offset", "complete", "failed"});
  constexpr uint32_t kWord = sizeof(uint32_t);
  uint32_t head = pieces.at("head_size").number(2 * kWord, kLongestBlock);
  catalog::ImagePieces read{
      .head_size = head,
      .length_offset = pieces.at("length_offset").number(0, head - kWord),
      .position_offset = pieces.at("position_offset").number(0, head - kWord),
      .piece_size = pieces.at("piece_size").number(1, OLT_REQUEST_LIMIT - head),
      .max_size = pieces.at("max_size").number(1, UINT32_MAX),
      .progress_offset = pieces.at("progress_offset").number(0, kLongestBlock - kWord),
      .complete = pieces.at("complete").number(0, UINT32_MAX),
      .failed = pieces.at("failed").number(0, UINT32_MAX)};
  bool overlap = read.position_offset < read.length_offset + kWord &&
                 read.length_offset < read.position_offset + kWord;
  if (overlap) {
    pieces.at("position_offset")
        .refuse(fmt::format("an offset outside the word at {}, the image's length",
                            read.length_offset));
  }
  if (read.failed == read.complete) pieces.at("failed").refuse("a number other than 'complete'");
  return read;
}

// Fields.

class LayoutReader {
 public:
  explicit LayoutReader(std::string name, const Layout &base) : layout_(std::move(name), base) {}

  void take_records(const JsonValue &records);
  void take_statuses(const JsonValue &statuses);
  void take_row_selection(const JsonValue &selection);
  void take_olt_update(const JsonValue &pieces) { layout_.set_olt_update(pieces_in(pieces)); }
  void take_onu_update(const JsonValue &pieces) { layout_.set_onu_update(pieces_in(pieces)); }
  void take_end_of_table(const JsonValue &status) {
    layout_.set_end_of_table(static_cast<uint16_t>(status.number(1, UINT16_MAX)));
  }

  Layout take() { return std::move(layout_); }

 private:
  /// A field and its place in the document.
  struct Given {
    Field field;
    JsonValue value;
  };

  std::vector<Field> fields_in(const JsonValue &list, const Extent &extent, bool is_inner);
  Field field_in(const JsonValue &value, const Extent &extent, bool is_inner);
  void take_form(const JsonValue &value, Field &field);
  void take_record(const JsonValue &value, Field &field);
  std::span<const ValueName> values_in(const JsonValue &values, const Field &field);
  std::vector<Field> without_gaps(std::vector<Given> given, const Extent &extent);
  Field reserved(uint32_t offset, uint32_t width);
  static void require_word(const JsonValue &list, const Field &field, const Extent &extent);

  Layout layout_;
};

/// Refuses a member that only fields of these kinds may have.
void require_kind(const JsonValue &member, const Field &field,
                  std::initializer_list<FieldKind> kinds) {
  if (std::find(kinds.begin(), kinds.end(), field.kind) != kinds.end()) return;
  std::vector<std::string_view> names;
  for (FieldKind kind : kinds) names.emplace_back(form_of(kind).name);
  member.refuse(fmt::format("is not for the kind {}", form_of(field.kind).name),
                fmt::format("the kind {}", fmt::join(names, " or ")));
}

void LayoutReader::take_records(const JsonValue &records) {
  std::vector<std::pair<std::string, std::vector<Field>>> described;
  records.each_member([&](const std::string &name, const JsonValue &list) {
    std::optional<Extent> extent = layout_.extent_of(name);
    if (!extent) {
      list.refuse("there is no such record",
                  "a type of oltmgmt.h such as olt_system_network, another record that 'oltctl"
                  " layout show box' names, or OPERATION.ARGUMENT of a number");
    }
    described.emplace_back(name, fields_in(list, *extent, false));
    if (extent->word != nullptr) require_word(list, described.back().second.front(), *extent);
  });
  // An argument's own description overrides that of its type.
  std::stable_partition(described.begin(), described.end(),
                        [](const auto &record) { return record.first.starts_with("olt_"); });
  for (auto &[name, fields] : described) layout_.set_fields(name, std::move(fields));
}

void LayoutReader::require_word(const JsonValue &list, const Field &field, const Extent &extent) {
  if (field.name == std::string_view(extent.word) && field.width == extent.size) return;
  list.refuse(fmt::format("is a number of {} bytes", extent.size),
              fmt::format("one field, '{}', of {} bytes", extent.word, extent.size));
}

std::vector<Field> LayoutReader::fields_in(const JsonValue &list, const Extent &extent,
                                           bool is_inner) {
  std::vector<Given> given;
  list.each_element([&](const JsonValue &value) {
    Field field = field_in(value, extent, is_inner);
    for (const Given &other : given) {
      if (std::string_view(other.field.name) != field.name) continue;
      value.refuse(fmt::format("there is a field '{}' already", field.name), "another name");
    }
    given.push_back({field, value});
  });
  bool names_any = std::any_of(given.begin(), given.end(),
                               [](const Given &one) { return one.field.role != Role::kReserved; });
  if (!names_any) list.refuse("no field is named", "one at least that is not reserved");
  return without_gaps(std::move(given), extent);
}

Field LayoutReader::field_in(const JsonValue &value, const Extent &extent, bool is_inner) {
  if (is_inner) {
    value.take_only({"name", "offset", "width", "kind", "unit", "decimals", "values", "role"});
  } else {
    value.take_only({"name", "offset", "width", "kind", "unit", "decimals", "values", "secret",
                     "role", "record"});
  }
  JsonValue name = value.at("name");
  JsonValue offset = value.at("offset");
  uint32_t end = extent.is_open || extent.size == 0 ? kLongestBlock : extent.size;
  // A block with a head is at least as long as the head.
  if (extent.is_open && extent.size != 0) end = extent.size + 1;
  Field field{.name = layout_.keep(identifier(name, "_")),
              .offset = offset.number(0, end - 1),
              .width = 0,
              .kind = kind_named(value.at("kind"), is_inner)};
  take_record(value, field);
  field.width = width_of(value, field, end - field.offset, extent);
  uint32_t last = extent.is_open && extent.size != 0 ? extent.size : end;
  bool reaches_the_end = extent.is_open && field.width == Field::kToTheEnd;
  if (!reaches_the_end && (field.width == 0 || field.width > last - field.offset)) {
    value.refuse(fmt::format("ends at {}", field.offset + std::max(field.width, field.record_size)),
                 fmt::format("an end up to {}, that of the record", last));
  }
  take_form(value, field);
  if (std::string_view(field.name).starts_with(kReserved) &&
      field.name != reserved_name(field.offset)) {
    name.refuse(fmt::format("'{}', as it begins at {}, or a name that does not begin with '{}'",
                            reserved_name(field.offset), field.offset, kReserved));
  }
  return field;
}

/// Reads the fields of repeated records. Without a size, a record ends with its last field.
void LayoutReader::take_record(const JsonValue &value, Field &field) {
  std::optional<JsonValue> record = value.find("record");
  if (record) require_kind(*record, field, {FieldKind::kRecords});
  if (field.kind != FieldKind::kRecords) return;
  record = value.at("record");
  record->take_only({"size", "fields"});
  Extent extent;
  if (auto size = record->find("size")) extent.size = size->number(1, kLongestBlock);
  field.record = layout_.keep(fields_in(record->at("fields"), extent, true));
  field.record_size = field.record.back().offset + field.record.back().width;
}

void LayoutReader::take_form(const JsonValue &value, Field &field) {
  if (std::optional<JsonValue> unit = value.find("unit")) {
    require_kind(*unit, field, {FieldKind::kNumber, FieldKind::kSigned, FieldKind::kNumbers});
    field.unit = layout_.keep(short_text(*unit));
  }
  if (std::optional<JsonValue> decimals = value.find("decimals")) {
    require_kind(*decimals, field, {FieldKind::kSigned});
    field.decimals = static_cast<uint8_t>(decimals->number(0, kMaxDecimals));
  }
  if (std::optional<JsonValue> values = value.find("values")) {
    require_kind(*values, field, {FieldKind::kNumber, FieldKind::kVlan, FieldKind::kFlags});
    field.values = values_in(*values, field);
  }
  if (std::optional<JsonValue> secret = value.find("secret")) field.secret = secret->flag();
  std::optional<JsonValue> role = value.find("role");
  if (!role) return;
  std::string text = role->text();
  if (text == "row_name") {
    field.role = Role::kRowName;
  } else if (text == "reserved") {
    field.role = Role::kReserved;
  } else if (text == "selector") {
    field.role = Role::kSelector;
  } else {
    role->refuse("row_name, reserved or selector");
  }
}

std::span<const ValueName> LayoutReader::values_in(const JsonValue &values, const Field &field) {
  uint32_t max = field.width < 4 ? (uint32_t{1} << 8 * field.width) - 1 : UINT32_MAX;
  uint32_t min = field.kind == FieldKind::kFlags ? 1 : 0;
  std::vector<ValueName> named;
  std::set<std::string> names;
  values.each_member([&](const std::string &key, const JsonValue &value) {
    uint32_t number = number_in_name(key, value, min, max);
    std::string name = identifier(value, "-_.");
    // No flags at all are "none".
    if (field.kind == FieldKind::kFlags && name == "none") value.refuse("another name");
    if (!names.insert(name).second) value.refuse("a name that no other number has");
    bool is_taken = std::any_of(named.begin(), named.end(),
                                [number](const auto &other) { return other.value == number; });
    if (is_taken) value.refuse(fmt::format("{} has a name already", number), "another number");
    named.push_back({number, layout_.keep(name)});
  });
  return layout_.keep(std::move(named));
}

Field LayoutReader::reserved(uint32_t offset, uint32_t width) {
  return {.name = layout_.keep(reserved_name(offset)),
          .offset = offset,
          .width = width,
          .kind = FieldKind::kBytes,
          .role = Role::kReserved};
}

/// The fields in order, and reserved ones between them.
std::vector<Field> LayoutReader::without_gaps(std::vector<Given> given, const Extent &extent) {
  std::stable_sort(given.begin(), given.end(),
                   [](const Given &a, const Given &b) { return a.field.offset < b.field.offset; });
  std::vector<Field> fields;
  uint32_t end = 0;
  bool has_end = true;
  for (const auto &[field, value] : given) {
    if (!fields.empty() && (!has_end || field.offset < end)) {
      value.refuse(fmt::format("'{}' begins within '{}'", field.name, fields.back().name),
                   has_end ? fmt::format("an offset from {}", end)
                           : fmt::format("nothing after '{}'", fields.back().name));
    }
    if (field.offset > end) fields.push_back(reserved(end, field.offset - end));
    fields.push_back(field);
    has_end = field.width != Field::kToTheEnd;
    end = field.offset + field.width;
  }
  if (extent.is_open && has_end) fields.push_back(reserved(end, Field::kToTheEnd));
  if (!extent.is_open && end < extent.size) fields.push_back(reserved(end, extent.size - end));
  return fields;
}

// Statuses and rows.

void LayoutReader::take_statuses(const JsonValue &statuses) {
  std::map<uint16_t, std::string> named;
  statuses.each_member([&](const std::string &key, const JsonValue &value) {
    auto status = static_cast<uint16_t>(number_in_name(key, value, 0, UINT16_MAX));
    if (!named.emplace(status, short_text(value)).second) {
      value.refuse(fmt::format("status {} has a name already", status), "another status");
    }
  });
  layout_.set_statuses(std::move(named));
}

void LayoutReader::take_row_selection(const JsonValue &selection) {
  selection.take_only({"target_offset", "record_offset", "this", "next"});
  constexpr uint32_t kWord = sizeof(uint32_t);
  catalog::RowSelection read{
      .target_offset = selection.at("target_offset").number(0, sizeof(olt_ont_target) - kWord),
      .record_offset =
          selection.at("record_offset").number(0, sizeof(olt_iptv_profile_row) - kWord),
      .this_row = selection.at("this").number(0, UINT32_MAX),
      .next_row = selection.at("next").number(0, UINT32_MAX)};
  if (read.this_row == read.next_row) selection.at("next").refuse("a number other than 'this'");
  layout_.set_row_selection(read);
}

const Layout &base_of(const JsonValue &document) {
  std::optional<JsonValue> base = document.find("base");
  if (!base) return Layout::contract();
  std::string name = base->text();
  for (const Layout *layout : {&Layout::box(), &Layout::contract()}) {
    if (layout->name() == name) return *layout;
  }
  base->refuse("box or none");
}

}  // namespace

Layout parse_layout(std::string_view text) {
  nlohmann::ordered_json json = parse_json(text, kDeepest);
  JsonValue document(json, "");
  document.take_only({"version", "name", "base", "records", "statuses", "end_of_table",
                      "row_selection", "olt_update", "onu_update"});
  document.at("version").number(kLayoutVersion, kLayoutVersion);
  JsonValue named = document.at("name");
  std::string name = identifier(named, "-_.");
  if (name == Layout::box().name() || name == Layout::contract().name()) {
    named.refuse("another name than that of a built-in layout");
  }
  LayoutReader reader(std::move(name), base_of(document));
  if (auto records = document.find("records")) reader.take_records(*records);
  if (auto statuses = document.find("statuses")) reader.take_statuses(*statuses);
  if (auto status = document.find("end_of_table")) reader.take_end_of_table(*status);
  if (auto selection = document.find("row_selection")) reader.take_row_selection(*selection);
  if (auto pieces = document.find("olt_update")) reader.take_olt_update(*pieces);
  if (auto pieces = document.find("onu_update")) reader.take_onu_update(*pieces);
  return reader.take();
}

}  // namespace olt::cli
