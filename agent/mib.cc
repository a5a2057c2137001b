#include "agent/mib.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "base/text.h"

namespace olt::agent {

namespace {

struct Revision {
  const char *date;
  const char *description;
};

/// Newest first. What a release has changed in the module gets one.
constexpr Revision kRevisions[] = {{"202611220000Z", "The first version."}};

constexpr size_t kLineLength = 79;
constexpr size_t kTextColumn = 17;

/// Where roots may lie.
struct Parent {
  const char *name;
  std::vector<uint32_t> oid;
};

const Parent *parent_of(const Oid &root) {
  static const Parent kParents[] = {{"enterprises", {1, 3, 6, 1, 4, 1}},
                                    {"experimental", {1, 3, 6, 1, 3}}};
  for (const Parent &parent : kParents) {
    bool is_below = root.size() > parent.oid.size() &&
                    std::equal(parent.oid.begin(), parent.oid.end(), root.begin());
    if (is_below) return &parent;
  }
  return nullptr;
}

/// In quotes, wrapped. Modules are ASCII and have no quotes in texts.
std::string in_quotes(std::string_view text) {
  std::string result = "\"";
  size_t column = kTextColumn;
  bool is_first = true;
  while (!text.empty()) {
    size_t end = std::min(text.find(' '), text.size());
    std::string word;
    for (char c : text.substr(0, end)) {
      if (continues_character(c)) continue;
      word += static_cast<unsigned char>(c) >= 0x80 ? '?' : c == '"' ? '\'' : c;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!is_first && column + 1 + word.size() > kLineLength) {
      result += fmt::format("\n{:{}}", "", kTextColumn);
      column = kTextColumn;
    } else if (!is_first) {
      result += ' ';
      ++column;
    }
    result += word;
    column += word.size();
    is_first = false;
  }
  return result + '"';
}

std::string capitalized(std::string_view name) {
  std::string text(name);
  if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text;
}

/// The names as SMIv2 wants them, a letter and then letters and digits, and each only once.
std::string enumeration(const Column &column) {
  std::vector<std::string> items;
  std::set<std::string> taken;
  for (const Label &label : column.labels) {
    std::string name;
    std::copy_if(label.name.begin(), label.name.end(), std::back_inserter(name),
                 [](char c) { return c != '.'; });
    if (name[0] >= 'A' && name[0] <= 'Z') name[0] = static_cast<char>(name[0] - 'A' + 'a');
    while (!taken.insert(name).second) name += "x";
    items.push_back(fmt::format("{}({})", name, label.value));
  }
  return fmt::format("{{ {} }}", fmt::join(items, ", "));
}

/// "{off(0), on(1)}" as "OltOffOn".
std::string convention_name(const Column &column) {
  std::string name = "Olt";
  for (const Label &label : column.labels) {
    for (char c : capitalized(label.name)) {
      if (c != '.') name += c;
    }
  }
  return name;
}

class MibWriter {
 public:
  MibWriter(const catalog::Layout &layout, const Oid &root)
      : layout_(layout), root_(root), tables_(enterprise_tables(layout)) {}

  std::string text() {
    for (const char *name :
         {"oltMgmt", "oltNotifications", "oltObjects", "oltOwnObjects", "oltConformance",
          "oltCompliances", "oltObjectGroups", "oltOwnGroups", "oltNotificationGroups",
          "oltCompliance", "oltNotificationGroup", "oltAgentGroup"}) {
      reserve(name);
    }
    for (const AgentScalar &scalar : agent_scalars()) reserve(scalar.name);
    reserve(module_object().name);
    for (const Notification &notification : notifications()) reserve(notification.name);
    name_objects();
    find_conventions();
    std::string body = branches();
    for (const Table &table : tables_) {
      body += table.is_scalar ? scalars(table) : conceptual_table(table);
    }
    body += own_objects();
    body += notification_types();
    body += conformance();
    std::string named = conventions();
    std::string text = fmt::format("{} DEFINITIONS ::= BEGIN\n\n", kMibName);
    text += head(!named.empty());
    return text + named + body + "END\n";
  }

 private:
  /// A name that no other differs from in case alone.
  std::string reserve(std::string name) {
    auto folded = [](std::string text) {
      std::transform(text.begin(), text.end(), text.begin(),
                     [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
      return text;
    };
    while (!taken_.insert(folded(name)).second) name += 'x';
    return name;
  }

  void name_objects() {
    for (Table &table : tables_) {
      reserve(table.name);
      reserve(table.name + "Table");
      reserve(table.name + "Entry");
      reserve(table.name + "Group");
    }
    for (Table &table : tables_) {
      for (IndexPart &part : table.index) part.name = reserve(part.name);
      for (Column &column : table.columns) {
        std::string name = reserve(column.name);
        names_[column.name] = name;
        column.name = name;
        std::sort(column.labels.begin(), column.labels.end(),
                  [](const Label &one, const Label &other) { return one.value < other.value; });
      }
    }
  }

  /// The name of the object that a notification carries; empty when the layout does not have it.
  std::string object_of(const Notification &notification) const {
    if (notification.object == module_object().name) return notification.object;
    auto found = names_.find(notification.object);
    return found == names_.end() ? "" : found->second;
  }

  /// Enumerations that several columns have get a name.
  void find_conventions() {
    std::map<std::string, size_t> uses;
    for (const Table &table : tables_) {
      for (const Column &column : table.columns) {
        if (column.type != SmiType::kEnumeration) continue;
        std::string values = enumeration(column);
        if (++uses[values] == 2) conventions_[values] = reserve(convention_name(column));
      }
    }
  }

  std::string use(const char *name) {
    used_.insert(name);
    return name;
  }

  std::string type_of(const Column &column) {
    if (column.type == SmiType::kEnumeration) {
      auto convention = conventions_.find(enumeration(column));
      return convention == conventions_.end() ? "INTEGER" : convention->second;
    }
    switch (column.type) {
      case SmiType::kInteger32:
        if (column.field.decimals == 0) return use("Integer32");
        decimals_.insert(column.field.decimals);
        return fmt::format("OltDecimals{}", column.field.decimals);
      case SmiType::kText:
        return use("SnmpAdminString");
      case SmiType::kMacAddress:
        return use("MacAddress");
      case SmiType::kIpAddress:
        return use("IpAddress");
      case SmiType::kPortList:
        return use("OltPorts");
      case SmiType::kVlanIds:
        return use("OltVlanIds");
      case SmiType::kUnsigned32:
        return "Unsigned32";
      default:
        return "OCTET STRING";
    }
  }

  std::string syntax_of(const Column &column) {
    std::string type = type_of(column);
    switch (column.type) {
      case SmiType::kEnumeration:
        return type == "INTEGER" ? type + " " + enumeration(column) : type;
      case SmiType::kText: {
        uint32_t longest = column.field.width == 0 ? column.size : column.field.longest_text();
        return fmt::format("{} (SIZE (0..{}))", type, longest);
      }
      case SmiType::kVlanIds:
        return fmt::format("{} (SIZE (0..{}))", type, column.size);
      case SmiType::kOctets:
      case SmiType::kPortList:
        return fmt::format("{} (SIZE ({}))", type, column.size);
      case SmiType::kUnsigned32: {
        bool is_narrow = !column.is_counted && column.field.width > 0 && column.field.width < 4;
        if (!is_narrow) return type;
        return fmt::format("{} (0..{})", type, (1U << (8 * column.field.width)) - 1);
      }
      default:
        return type;
    }
  }

  static std::string node(std::string_view name, std::string_view parent, uint32_t arc) {
    return fmt::format("{} OBJECT IDENTIFIER ::= {{ {} {} }}\n", name, parent, arc);
  }

  /// A definition: its macro, and its clauses, of which empty ones are left out.
  static std::string definition(std::string_view name, std::string_view macro,
                                std::initializer_list<std::pair<const char *, std::string>> clauses,
                                std::string_view place) {
    std::string text = fmt::format("{} {}\n", name, macro);
    for (const auto &[keyword, value] : clauses) {
      if (!value.empty()) text += fmt::format("    {:11} {}\n", keyword, value);
    }
    return text + fmt::format("    ::= {{ {} }}\n\n", place);
  }

  static std::string object(std::string_view name, const std::string &syntax, std::string units,
                            std::string_view access, const std::string &description,
                            std::string_view place, std::string index = "") {
    return definition(name, "OBJECT-TYPE",
                      {{"SYNTAX", syntax},
                       {"UNITS", std::move(units)},
                       {"MAX-ACCESS", std::string(access)},
                       {"STATUS", "current"},
                       {"DESCRIPTION", in_quotes(description)},
                       {"INDEX", std::move(index)}},
                      place);
  }

  std::string column(const Table &table, const Column &column) {
    std::string parent = table.is_scalar ? table.name : table.name + "Entry";
    return object(column.name, syntax_of(column),
                  column.units.empty() ? "" : in_quotes(column.units),
                  column.setter == nullptr ? "read-only" : "read-write", column.description,
                  fmt::format("{} {}", parent, column.arc));
  }

  std::string scalars(const Table &table) {
    std::string text = fmt::format("-- {}\n\n", table.description);
    text += node(table.name, "oltObjects", table.arc) + "\n";
    for (const Column &of : table.columns) text += column(table, of);
    return text;
  }

  std::string own_objects() {
    std::string text;
    for (const AgentScalar &scalar : agent_scalars()) {
      text += object(scalar.name, use("Counter32"), "", "read-only", scalar.description,
                     fmt::format("oltOwnObjects {}", scalar.arc));
    }
    const AgentScalar &module = module_object();
    return text + object(module.name, "Unsigned32", "", "accessible-for-notify", module.description,
                         fmt::format("oltOwnObjects {}", module.arc));
  }

  std::string conceptual_table(const Table &table) {
    std::string type = capitalized(table.name) + "Entry";
    std::vector<std::string> names;
    std::vector<std::string> sequence;
    for (const IndexPart &part : table.index) {
      names.push_back(part.name);
      sequence.push_back(fmt::format("    {:32} {}", part.name, index_type(part)));
    }
    for (const Column &of : table.columns) {
      sequence.push_back(fmt::format("    {:32} {}", of.name, type_of(of)));
    }
    std::string text = object(table.name + "Table", "SEQUENCE OF " + type, "", "not-accessible",
                              table.description, fmt::format("oltObjects {}", table.arc));
    text += object(table.name + "Entry", type, "", "not-accessible",
                   fmt::format("A row of {}Table.", table.name), table.name + "Table 1",
                   fmt::format("{{ {} }}", fmt::join(names, ", ")));
    text += fmt::format("{} ::= SEQUENCE {{\n{}\n}}\n\n", type, fmt::join(sequence, ",\n"));
    for (const IndexPart &part : table.index) {
      std::string syntax = index_type(part);
      if (part.is_name()) syntax += fmt::format(" (SIZE ({}))", part.width);
      text += object(part.name, syntax, "", "not-accessible", part.description,
                     fmt::format("{}Entry {}", table.name, part.arc));
    }
    for (const Column &of : table.columns) text += column(table, of);
    return text;
  }

  std::string index_type(const IndexPart &part) {
    return part.is_name() ? use("OltPaddedName") : "Unsigned32";
  }

  static std::string branches() {
    return node("oltNotifications", "oltMgmt", kNotificationArc) +
           node("oltObjects", "oltMgmt", kObjectArc) + node("oltOwnObjects", "oltMgmt", kAgentArc) +
           node("oltConformance", "oltMgmt", kConformanceArc) +
           node("oltCompliances", "oltConformance", 1) +
           node("oltObjectGroups", "oltConformance", 2) +
           node("oltOwnGroups", "oltConformance", 3) +
           node("oltNotificationGroups", "oltConformance", 4) + "\n";
  }

  std::string notification_types() const {
    std::string text;
    for (const Notification &notification : notifications()) {
      std::string object = object_of(notification);
      if (object.empty()) continue;
      text += definition(notification.name, "NOTIFICATION-TYPE",
                         {{"OBJECTS", list({object})},
                          {"STATUS", "current"},
                          {"DESCRIPTION", in_quotes(notification.description)}},
                         fmt::format("oltNotifications {}", notification.arc));
    }
    return text;
  }

  static std::string list(const std::vector<std::string> &names) {
    std::string separator = fmt::format(",\n{:18}", "");
    return fmt::format("{{ {} }}", fmt::join(names, separator));
  }

  static std::string group(const std::string &name, const std::vector<std::string> &objects,
                           const std::string &description, std::string_view place) {
    return definition(name, "OBJECT-GROUP",
                      {{"OBJECTS", list(objects)},
                       {"STATUS", "current"},
                       {"DESCRIPTION", in_quotes(description)}},
                      place);
  }

  static std::string group(const Table &table) {
    std::vector<std::string> names;
    for (const Column &of : table.columns) names.push_back(of.name);
    return group(table.name + "Group", names, table.description,
                 fmt::format("oltObjectGroups {}", table.arc));
  }

  std::string conformance() const {
    std::string text;
    std::vector<std::string> groups;
    for (const Table &table : tables_) {
      text += group(table);
      groups.push_back(table.name + "Group");
    }
    std::vector<std::string> own;
    for (const AgentScalar &scalar : agent_scalars()) own.push_back(scalar.name);
    own.push_back(module_object().name);
    text += group("oltAgentGroup", own, "What the agent counts of itself.", "oltOwnGroups 1");
    groups.emplace_back("oltAgentGroup");
    std::vector<std::string> names;
    for (const Notification &notification : notifications()) {
      if (!object_of(notification).empty()) names.push_back(notification.name);
    }
    groups.emplace_back("oltNotificationGroup");
    // The clause is too long for its column.
    text += fmt::format(
        "oltNotificationGroup NOTIFICATION-GROUP\n    NOTIFICATIONS\n{:16}{}\n"
        "    STATUS      current\n    DESCRIPTION \"The notifications.\"\n"
        "    ::= {{ oltNotificationGroups 1 }}\n\n",
        "", list(names));
    text += fmt::format(
        "oltCompliance MODULE-COMPLIANCE\n    STATUS      current\n"
        "    DESCRIPTION \"All objects. An agent may keep them from being written.\"\n"
        "    MODULE\n    MANDATORY-GROUPS\n{:16}{}\n",
        "", list(groups));
    for (const Table &table : tables_) {
      for (const Column &of : table.columns) {
        if (of.setter == nullptr) continue;
        text += fmt::format(
            "    OBJECT      {}\n    MIN-ACCESS  read-only\n"
            "    DESCRIPTION \"Agents may be read-only.\"\n",
            of.name);
      }
    }
    return text + "    ::= { oltCompliances 1 }\n\n";
  }

  std::string conventions() const {
    std::string text;
    auto convention = [&text](std::string_view name, const char *hint, const char *description,
                              std::string_view syntax) {
      text += fmt::format("{} ::= TEXTUAL-CONVENTION\n", name);
      if (hint != nullptr) text += fmt::format("    DISPLAY-HINT \"{}\"\n", hint);
      text += fmt::format("    STATUS      current\n    DESCRIPTION {}\n    SYNTAX      {}\n\n",
                          in_quotes(description), syntax);
    };
    if (used_.contains("OltPorts")) {
      convention("OltPorts", "1x:",
                 "A bit for each port; the most significant bit of the first octet is port 1.",
                 "OCTET STRING");
    }
    if (used_.contains("OltVlanIds")) {
      convention("OltVlanIds", "2d,", "Two octets for each VLAN, the more significant one first.",
                 "OCTET STRING");
    }
    if (used_.contains("OltPaddedName")) {
      convention("OltPaddedName", "255a", "A name, padded with zeros to the size of the object.",
                 "OCTET STRING");
    }
    for (uint32_t decimals : decimals_) {
      convention(fmt::format("OltDecimals{}", decimals), fmt::format("d-{}", decimals).c_str(),
                 fmt::format("A number with {} digits after the point.", decimals).c_str(),
                 "Integer32");
    }
    std::map<std::string, std::string> by_name;
    for (const auto &[values, name] : conventions_) by_name[name] = values;
    for (const auto &[name, values] : by_name) {
      convention(name, nullptr, "Values that several objects share.", "INTEGER " + values);
    }
    return text;
  }

  std::string head(bool has_conventions) {
    const Parent &parent = *parent_of(root_);
    use(parent.name);
    use("MODULE-IDENTITY");
    use("OBJECT-TYPE");
    use("NOTIFICATION-TYPE");
    use("Unsigned32");
    if (!decimals_.empty()) use("Integer32");
    std::vector<const char *> smi;
    for (const char *name :
         {"MODULE-IDENTITY", "OBJECT-TYPE", "NOTIFICATION-TYPE", "Counter32", "Integer32",
          "IpAddress", "Unsigned32", "enterprises", "experimental"}) {
      if (used_.contains(name)) smi.push_back(name);
    }
    std::vector<const char *> tc;
    if (has_conventions) tc.push_back("TEXTUAL-CONVENTION");
    if (used_.contains("MacAddress")) tc.push_back("MacAddress");
    std::string separator = ",\n    ";
    std::string text =
        fmt::format("IMPORTS\n    {}\n        FROM SNMPv2-SMI\n", fmt::join(smi, separator));
    if (!tc.empty()) {
      text += fmt::format("    {}\n        FROM SNMPv2-TC\n", fmt::join(tc, separator));
    }
    if (used_.contains("SnmpAdminString")) {
      text += "    SnmpAdminString\n        FROM SNMP-FRAMEWORK-MIB\n";
    }
    text += "    MODULE-COMPLIANCE,\n    OBJECT-GROUP,\n    NOTIFICATION-GROUP\n";
    text += "        FROM SNMPv2-CONF;\n\n";
    return text + identity(parent);
  }

  std::string identity(const Parent &parent) const {
    std::string above = parent.name;
    std::string nodes;
    for (size_t at = parent.oid.size(); at + 1 < root_.size(); ++at) {
      std::string name = fmt::format("oltRoot{}", at - parent.oid.size() + 1);
      nodes += node(name, above, root_[at]);
      above = name;
    }
    std::string text = fmt::format(
        "oltMgmt MODULE-IDENTITY\n    LAST-UPDATED \"{}\"\n    ORGANIZATION \"oltmgmt\"\n"
        "    CONTACT-INFO \"The maintainers of oltmgmt.\"\n    DESCRIPTION {}\n",
        kRevisions[0].date,
        in_quotes(
            fmt::format("An EPON optical line terminal, as its management modules describe it. "
                        "What bytes mean is the layout {}.",
                        layout_.name())));
    for (const Revision &revision : kRevisions) {
      text += fmt::format("    REVISION    \"{}\"\n    DESCRIPTION {}\n", revision.date,
                          in_quotes(revision.description));
    }
    text += fmt::format("    ::= {{ {} {} }}\n\n", above, root_.back());
    return nodes.empty() ? text : text + nodes + "\n";
  }

  const catalog::Layout &layout_;
  const Oid &root_;
  std::vector<Table> tables_;
  std::map<std::string, std::string> names_;  ///< of columns, by those of the objects
  std::set<std::string> taken_;
  std::set<std::string, std::less<>> used_;
  std::set<uint32_t> decimals_;
  std::map<std::string, std::string> conventions_;  ///< names by values
};

}  // namespace

bool is_mib_root(const Oid &root) {
  return parent_of(root) != nullptr;
}

std::string mib_module(const catalog::Layout &layout, const Oid &root) {
  return MibWriter(layout, root).text();
}

}  // namespace olt::agent
