#include "agent/objects.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <span>

namespace olt::agent {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::Role;

namespace {

/// Left out: what may hold credentials (voice accounts, SIP settings), and operations that never
/// release their reply.
struct TableSource {
  const char *name;
  const char *reader;
  const char *stepper;  ///< null: the reader finds the next row itself
  std::initializer_list<IndexKind> index;
};

using enum IndexKind;

const TableSource kTables[] = {
    {"Port", "get_snmp_olt_port_basic_info", "process_snmp_oltbasicport", {kSlot, kPort}},
    {"Vlan", "process_snmp_vlan_id", nullptr, {kVlan}},
    {"BasicPort", "process_snmp_oltbasicport", nullptr, {kSlot, kPort}},
    {"Pon", "process_snmp_oltauth", nullptr, {kSlot, kInterface}},
    {"Onu", "process_snmp_onubasicinfo", nullptr, {kSlot, kInterface, kOnu}},
    {"Link", "process_snmp_linkbasicinfo", nullptr, {kSlot, kInterface, kOnu}},
    {"OnuParts", "process_snmp_onuglobalinfo", nullptr, {kSlot, kInterface, kOnu}},
    {"VoiceService", "process_snmp_iadinfo", nullptr, {kSlot, kInterface, kOnu}},
    {"FaxMode", "process_snmpvoip_faxmode", nullptr, {kSlot, kInterface, kOnu, kLine}},
    {"VoiceLine", "process_voip_linestatus", nullptr, {kSlot, kInterface, kOnu, kLine}},
    {"Wan", "process_snmp_hguwaninfo", nullptr, {kSlot, kInterface, kOnu}},
    {"VoiceBinding", "process_snmp_hguvoipbandinginfo", nullptr, {kSlot, kInterface, kOnu}},
    {"UniPort", "process_onu_portinfo", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniPolicing", "process_onu_portpolicying", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniDownrate", "process_onu_portdownrate", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniVlan", "process_onu_portvlanmode", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniStrip", "process_onu_portstrip", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniMulticast", "process_onu_portmuticastvlan", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"UniLimit", "process_onu_portmuticastmaxgroup", nullptr, {kSlot, kInterface, kOnu, kPort}},
    {"IptvProfile", "process_snmp_iptv_profile", nullptr, {kProfile}},
    {"IptvChannel", "process_snmp_iptv_profile_channel", nullptr, {kProfile, kChannel}},
    {"RstpPort", "get_rstp_port_config", "process_snmp_oltbasicport", {kSlot, kPort}},
    {"RstpState", "get_rstp_brief", "process_snmp_oltbasicport", {kSlot, kPort}},
};

struct ScalarSource {
  const char *name;
  const char *reader;
  const char *word = nullptr;  ///< what a reader's "value" is
};

constexpr ScalarSource kScalars[] = {
    {"Oam", "get_olt_support_oam", "support"},
    {"Base", "get_olt_mac"},
    {"Snmp", "get_snmp_param"},
    {"Network", "get_system_network"},
    {"System", "get_snmp_systeminfo"},
    {"Update", "get_card_updatestatus", "progress"},
    {"Uplink", "get_upport_agg", "aggregation"},
    {"Igmp", "get_igmpproxy_config"},
    {"Rstp", "get_rstp_config"},
};

constexpr const char *kUserReader = "get_system_next_user";

struct Setting {
  const char *reader;
  const char *setter;
  const char *argument;
  std::initializer_list<const char *> fields;  ///< empty: all
};

const Setting kSettings[] = {
    {"get_snmp_olt_port_basic_info",
     "set_snmp_olt_port_basic_info",
     "record",
     {"sfp_module", "port_enable", "vlanmode_second", "vlanmode_first", "flowcontrol",
      "ingressfilter_first", "ingressfilter_second", "ratecontrol_first", "ratecontrol_second",
      "rstp_state", "max_link"}},
    {"get_rstp_port_config", "set_rstp_port_config", "port", {}},
    {"process_snmp_onubasicinfo", "add_ont_description", "description", {"description"}},
    {"process_onu_portinfo", "set_ont_port_basicinfo", "info", {"info"}},
    {"process_onu_portinfo", "set_ont_port_loopback", "port_value", {"loopback"}},
    {"process_onu_portinfo", "set_ont_port_alarmsetting", "port_value", {"alarm"}},
    {"process_onu_portpolicying", "set_ont_port_policying", "policing", {}},
    {"process_onu_portdownrate", "set_ont_port_downrate", "rates", {}},
    {"process_onu_portvlanmode", "set_ont_port_vlanmode", "mode", {}},
    {"process_onu_portmuticastmaxgroup", "set_ont_port_muticastgrounp", "value", {"group_limit"}},
    {"process_snmpvoip_faxmode", "set_ont_fax", "fax_mode", {}},
    {"process_voip_linestatus", "set_voip_linestatus", "line_status", {"line_status"}},
};

/// The first arc of columns that are not part of an index.
constexpr uint32_t kFirstColumnArc = 10;
constexpr uint32_t kCountArc = 1;
constexpr uint32_t kWord = 4;

struct KindText {
  const char *name;     ///< of the object
  const char *field;    ///< in records
  const char *meaning;  ///< in descriptions
};

KindText text_of(IndexKind kind) {
  switch (kind) {
    case kSlot:
      return {"Slot", "slot", "The slot"};
    case kInterface:
      return {"Interface", "interface", "The PON interface in the slot"};
    case kOnu:
      return {"Onu", "onu", "The ONU on the PON interface"};
    case kPort:
      return {"Port", "port", "The port"};
    case kLine:
      return {"Line", "line", "The voice line"};
    case kVlan:
      return {"Id", "vlan", "The VLAN"};
    case kProfile:
      return {"Profile", "profile", "The name of the profile, padded with zeros"};
    case kChannel:
      break;
  }
  return {"Channel", "number", "The channel in the profile"};
}

const Field *find(std::span<const Field> fields, std::string_view name) {
  auto found = std::find_if(fields.begin(), fields.end(),
                            [name](const Field &field) { return field.name == name; });
  return found == fields.end() ? nullptr : &*found;
}

/// "link_state" as "LinkState"; for labels, which begin with a small letter, "mac-loid" as
/// "macLoid".
std::string joined(std::string_view name, bool is_label) {
  std::string text;
  bool begins = !is_label;
  for (char c : name) {
    if (c == '_' || c == '-') {
      begins = true;
      continue;
    }
    text += begins && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    begins = false;
  }
  return text;
}

/// Numbers whose names are exceptions ("no-limit", "failed") stay numbers.
bool is_enumeration(const Field &field) {
  return field.kind == FieldKind::kNumber && field.values.size() > 1 && field.unit == nullptr;
}

SmiType type_of(const Field &field) {
  switch (field.kind) {
    case FieldKind::kText:
    case FieldKind::kPadded:
      return SmiType::kText;
    case FieldKind::kSigned:
      return SmiType::kInteger32;
    case FieldKind::kNumber:
      return is_enumeration(field) ? SmiType::kEnumeration : SmiType::kUnsigned32;
    case FieldKind::kVlan:
    case FieldKind::kFlags:
    case FieldKind::kDuration:
    case FieldKind::kNumbers:
    case FieldKind::kRecords:
      return SmiType::kUnsigned32;
    case FieldKind::kPorts:
      return SmiType::kPortList;
    case FieldKind::kVlans:
      return SmiType::kVlanIds;
    case FieldKind::kMac:
      return SmiType::kMacAddress;
    case FieldKind::kIpv4:
      return SmiType::kIpAddress;
    default:
      return SmiType::kOctets;
  }
}

bool is_shown(const Field &field, const Table &table) {
  if (field.role != Role::kPlain || field.secret) return false;
  return std::none_of(table.index.begin(), table.index.end(), [&field](const IndexPart &part) {
    return std::string_view(text_of(part.kind).field) == field.name;
  });
}

class Deriver {
 public:
  explicit Deriver(const Layout &layout) : layout_(layout) {}

  std::optional<Table> table(const TableSource &source) const {
    Table table = begin(source.name, source.reader);
    bool is_target = table.reader->arguments()[0].form == FieldKind::kOnt;
    if (!layout_.row_selection() || !layout_.end_of_table()) return std::nullopt;
    if (source.stepper != nullptr) table.stepper = layout_.find(source.stepper);
    table.selector_offset =
        is_target ? layout_.row_selection()->target_offset : layout_.row_selection()->record_offset;
    for (IndexKind kind : source.index) {
      if (!add_index(table, kind, is_target)) return std::nullopt;
    }
    add_columns(table);
    if (table.columns.empty()) return std::nullopt;
    table.description =
        fmt::format("{}: what {} returns for each row.", table.reader->summary, table.reader->name);
    return table;
  }

  std::optional<Table> scalars(const ScalarSource &source) const {
    Table table = begin(source.name, source.reader);
    table.is_scalar = true;
    add_columns(table, source.word);
    if (table.columns.empty()) return std::nullopt;
    table.description =
        fmt::format("{}: what {} returns.", table.reader->summary, table.reader->name);
    return table;
  }

  /// The records hold passwords: only their number is shown.
  Table users() const {
    Table table = begin("User", kUserReader);
    table.is_scalar = true;
    table.counts_rows = true;
    table.description = "The accounts of management users.";
    table.columns.push_back(
        {.name = "oltUserCount",
         .arc = kCountArc,
         .type = SmiType::kUnsigned32,
         .size = kWord,
         .description = "The number of management users.",
         .field = {.name = "count", .offset = 0, .width = kWord, .kind = FieldKind::kNumber}});
    return table;
  }

 private:
  Table begin(const char *name, const char *reader) const {
    Table table{.name = fmt::format("olt{}", name), .reader = layout_.find(reader)};
    table.arc = table.reader->address.message_type;
    std::span<const Argument> arguments = table.reader->arguments();
    // The last output is the record: the first argument may come back, too.
    for (size_t place = 0; place < arguments.size(); ++place) {
      if (arguments[place].is_output()) table.record = place;
    }
    return table;
  }

  /// @return whether the layout says where it is in requests
  bool add_index(Table &table, IndexKind kind, bool is_target) const {
    KindText text = text_of(kind);
    const Argument &first = table.reader->arguments()[0];
    const Field *requested = find(first.fields, text.field);
    if (is_target) {
      bool is_part = kind == kPort || kind == kLine;
      requested = find(layout_.target_fields(), is_part ? "part" : text.field);
    }
    const Field *stepped = requested;
    if (table.stepper != nullptr) {
      stepped = find(table.stepper->arguments()[0].fields, text.field);
    }
    const Field *named = first.is_output() ? requested : find(record(table).fields, text.field);
    if (requested == nullptr || stepped == nullptr || named == nullptr) return false;
    auto arc = static_cast<uint32_t>(table.index.size() + 1);
    table.index.push_back({.name = fmt::format("{}{}", table.name, text.name),
                           .arc = arc,
                           .kind = kind,
                           .description = fmt::format("{}.", text.meaning),
                           .width = requested->width,
                           .request_offset = requested->offset,
                           .step_offset = stepped->offset,
                           .reply_offset = named->offset});
    return true;
  }

  static const Argument &record(const Table &table) {
    return table.reader->arguments()[table.record];
  }

  void add_columns(Table &table, const char *word = nullptr) const {
    const Argument &argument = record(table);
    if (argument.fields.empty()) {
      Field whole = argument.whole();
      if (word != nullptr) whole.name = word;
      if (!whole.secret) add_column(table, whole);
    }
    for (const Field &field : argument.fields) {
      if (is_shown(field, table)) add_column(table, field);
    }
  }

  void add_column(Table &table, const Field &field) const {
    bool is_counted = field.kind == FieldKind::kRecords;
    if (field.width == Field::kToTheEnd && !is_counted) return;
    std::string name = fmt::format("{}{}", table.name, joined(field.name, false));
    if (field.kind != FieldKind::kNumbers) {
      table.columns.push_back(column(table, field, std::move(name)));
      return;
    }
    for (uint32_t at = 0; at < field.width; at += kWord) {
      Field word = field;
      word.offset += at;
      word.width = kWord;
      word.kind = FieldKind::kNumber;
      table.columns.push_back(column(table, word, fmt::format("{}{}", name, at / kWord + 1)));
    }
  }

  Column column(const Table &table, const Field &field, std::string name) const {
    bool is_counted = field.kind == FieldKind::kRecords;
    Column column{.name = std::move(name),
                  .arc = kFirstColumnArc + field.offset,
                  .type = type_of(field),
                  .size = field.width,
                  .is_counted = is_counted,
                  .field = field};
    if (field.unit != nullptr) column.units = field.unit;
    if (field.kind == FieldKind::kDuration) column.units = "seconds";
    if (column.type == SmiType::kEnumeration) {
      for (const catalog::ValueName &value : field.values) {
        column.labels.push_back({static_cast<int32_t>(value.value), joined(value.name, true)});
      }
    }
    column.description =
        is_counted
            ? fmt::format("The number of {} that {} returns.", field.name, table.reader->name)
            : fmt::format("{}: bytes {} to {} of what {} returns.", field.name, field.offset,
                          field.offset + field.width - 1, table.reader->name);
    if (column.type == SmiType::kUnsigned32) {
      for (const catalog::ValueName &value : field.values) {
        column.description += fmt::format(" {} is {}.", value.value, value.name);
      }
    }
    add_setter(table, column);
    return column;
  }

  void add_setter(const Table &table, Column &column) const {
    for (const Setting &setting : kSettings) {
      bool is_set = setting.fields.size() == 0 ||
                    std::find(setting.fields.begin(), setting.fields.end(),
                              std::string_view(column.field.name)) != setting.fields.end();
      if (std::string_view(setting.reader) != table.reader->name || !is_set) continue;
      column.setter = layout_.find(setting.setter);
      std::span<const Argument> arguments = column.setter->arguments();
      while (std::string_view(arguments[column.setter_argument].name) != setting.argument) {
        ++column.setter_argument;
      }
      bool takes_record = arguments[column.setter_argument].size == record(table).size;
      const Field *first = find(record(table).fields, column.field.name);
      column.setter_offset = takes_record || first == nullptr ? 0 : first->offset;
    }
  }

  const Layout &layout_;
};

}  // namespace

std::optional<Oid> to_oid(std::string_view text) {
  Oid oid;
  if (text.starts_with('.')) text.remove_prefix(1);
  while (true) {
    size_t end = std::min(text.find('.'), text.size());
    uint32_t arc = 0;
    auto [last, error] = std::from_chars(text.data(), text.data() + end, arc);
    if (error != std::errc() || last != text.data() + end) return std::nullopt;
    oid.push_back(arc);
    if (end == text.size()) return oid;
    text.remove_prefix(end + 1);
  }
}

std::string oid_text(const Oid &oid) {
  return fmt::format("{}", fmt::join(oid, "."));
}

size_t Table::index_length() const {
  size_t length = is_scalar ? 1 : 0;
  for (const IndexPart &part : index) length += part.length();
  return length;
}

Oid Table::oid(const Oid &root) const {
  if (!place.empty()) return place;
  Oid oid = root;
  oid.insert(oid.end(), {kObjectArc, arc});
  return oid;
}

Oid Table::region(const Oid &root) const {
  Oid region = oid(root);
  if (is_scalar && !place.empty()) region.push_back(columns[0].arc);
  return region;
}

Oid Table::entry(const Oid &root) const {
  Oid entry = oid(root);
  if (!is_scalar) entry.push_back(1);
  return entry;
}

std::vector<Table> enterprise_tables(const Layout &layout) {
  Deriver deriver(layout);
  std::vector<Table> tables = {deriver.users()};
  for (const TableSource &source : kTables) {
    if (auto table = deriver.table(source)) tables.push_back(std::move(*table));
  }
  for (const ScalarSource &source : kScalars) {
    if (auto table = deriver.scalars(source)) tables.push_back(std::move(*table));
  }
  std::sort(tables.begin(), tables.end(),
            [](const Table &one, const Table &other) { return one.arc < other.arc; });
  return tables;
}

Oid AgentScalar::oid(const Oid &root) const {
  Oid oid = root;
  oid.insert(oid.end(), {kAgentArc, arc});
  return oid;
}

const std::vector<AgentScalar> &agent_scalars() {
  static const std::vector<AgentScalar> scalars = {
      {"oltAgentReads", 1, "Rows that the agent read from the modules."},
      {"oltAgentRequests", 2, "Variables that the master agent asked for."},
      {"oltAgentDelegated", 3, "Requests that waited for a module."},
      {"oltAgentDeadlines", 4, "Requests that no module answered in time."},
      {"oltAgentRefused", 5,
       "Variables refused at once, while a call to their module had no answer."},
      {"oltAgentLate", 6, "Answers of modules that came after the deadline."},
      {"oltAgentSessionsLost", 7, "Sessions with the master agent that were lost."},
  };
  return scalars;
}

const std::vector<Notification> &notifications() {
  static const std::vector<Notification> notifications = {
      {"oltOnuUp", 1, "oltOnuState", "An ONU came up."},
      {"oltOnuAway", 2, "oltOnuState", "An ONU went away."},
      {"oltOnuBlocked", 3, "oltOnuState", "An ONU was blocked: its authentication was refused."},
      {"oltPortUp", 4, "oltBasicPortLinkState", "The link of an Ethernet port came up."},
      {"oltPortDown", 5, "oltBasicPortLinkState", "The link of an Ethernet port went down."},
      {"oltUpdateEnded", 6, "oltUpdateProgress", "A firmware update was completed or failed."},
      {"oltModuleLost", 7, "oltAgentModule", "A management module does not answer."},
      {"oltModuleBack", 8, "oltAgentModule", "A management module answers again."},
  };
  return notifications;
}

const AgentScalar &module_object() {
  static const AgentScalar object = {"oltAgentModule", 8, "The number of a management module."};
  return object;
}

}  // namespace olt::agent
