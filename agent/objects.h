/// The enterprise objects of the agent: what the tables and scalars are called, where they stand in
/// the tree, and which bytes of which operation's answer each value is. Derived from a layout of
/// the catalog; free of net-snmp.
///
/// Object identifiers follow from what never changes, so nothing is ever renumbered:
///
///   ROOT.0.N                  notification N
///   ROOT.1.T                  a table or a group of scalars; T is the message type of its reader
///   ROOT.1.T.1.I              index I of a table: 1 is the first one
///   ROOT.1.T.1.C.INDEX        a cell of a table
///   ROOT.1.T.C.0              a scalar
///   ROOT.2                    objects of the agent itself
///   ROOT.3                    conformance
///
/// C is 10 plus the offset of the value in the reader's record. A field that gets a name later
/// takes the number of its bytes; it moves no other.
#ifndef OLT_AGENT_OBJECTS_H
#define OLT_AGENT_OBJECTS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/layout.h"
#include "catalog/operation.h"

namespace olt::agent {

using Oid = std::vector<uint32_t>;

/// "1.3.6.1", also with a dot in front; nothing when the text is no object identifier.
std::optional<Oid> to_oid(std::string_view text);
std::string oid_text(const Oid &oid);

/// The enterprise number for documentation.
inline constexpr std::string_view kDefaultRoot = "1.3.6.1.4.1.32473";

enum class SmiType : uint8_t {
  kInteger32,
  kUnsigned32,
  kEnumeration,  ///< INTEGER with names
  kText,         ///< UTF-8: SnmpAdminString
  kOctets,       ///< OCTET STRING
  kMacAddress,
  kIpAddress,
  kPortList,  ///< 4 octets; port 1 is the most significant bit of the first one
  kVlanIds,   ///< two octets for each id, the high one first
};

/// A named value of an enumeration, as SMIv2 wants names: "macLoid".
struct Label {
  int32_t value;
  std::string name;
};

/// One value of a row, or a scalar.
struct Column {
  std::string name;  ///< "oltOnuState"
  uint32_t arc;
  SmiType type;
  uint32_t size;              ///< octets of a text or octet string, at most
  bool is_counted = false;    ///< the number of records in the field, not what they hold
  std::string units;          ///< empty: none
  std::vector<Label> labels;  ///< of an enumeration
  std::string description;
  catalog::Field field;  ///< one word of a field that has several; its offset is in the record

  /// Sets it: takes the row's name as the reader does, and record bytes; null: read-only.
  const catalog::Operation *setter = nullptr;
  size_t setter_argument = 0;  ///< takes the record from setter_offset on
  uint32_t setter_offset = 0;
};

enum class IndexKind : uint8_t { kSlot, kInterface, kOnu, kPort, kLine, kVlan, kProfile, kChannel };

/// A part of an index. A number is one sub-identifier. A profile's name is an OCTET STRING of fixed
/// size, padded with zeros, which sorts rows as the modules do.
struct IndexPart {
  std::string name;  ///< "oltOnuSlot"
  uint32_t arc;
  IndexKind kind;
  std::string description;
  uint32_t width;           ///< bytes in the records
  uint32_t request_offset;  ///< in the reader's first argument
  uint32_t step_offset;     ///< in the stepper's first argument, which also names the row found
  /// Where the reader names the row that it found: in its first argument if that comes back, else
  /// in the record that holds the columns.
  uint32_t reply_offset;

  bool is_name() const { return kind == IndexKind::kProfile; }
  /// Sub-identifiers that it takes.
  size_t length() const { return is_name() ? width : 1; }
};

class RowSource;

/// A conceptual table, or a group of scalars: a table of one row without an index.
struct Table {
  std::string name;  ///< "oltOnu": of oltOnuTable, oltOnuEntry and OltOnuEntry
  bool is_scalar = false;
  uint32_t arc;
  std::string description;
  std::vector<IndexPart> index;
  std::vector<Column> columns;  ///< in the order of their arcs
  Oid place{};                  ///< of a standard table, which does not stand below the root
  bool is_of_host = false;      ///< snmpd has it, too, in the default context

  const catalog::Operation *reader;
  /// Finds the row after another one; null: the reader does, and reads it at once.
  const catalog::Operation *stepper = nullptr;
  /// The argument of the reader that holds the columns.
  size_t record;
  /// In the first argument of what finds the row: the word that says which one is wanted.
  uint32_t selector_offset = 0;
  /// The value is the number of rows, which the reader steps through: the only column.
  bool counts_rows = false;
  /// Where the rows come from, instead of the reader.
  std::shared_ptr<const RowSource> rows{};

  /// Sub-identifiers of an index.
  size_t index_length() const;
  /// ROOT.1.T for scalars, ROOT.1.T.1 for tables: what the arcs of columns follow.
  Oid entry(const Oid &root) const;
  Oid oid(const Oid &root) const;
  /// What all its cells lie below: its own, or that of a standard scalar.
  Oid region(const Oid &root) const;
};

/// The arcs below the root.
enum Arc : uint32_t { kNotificationArc = 0, kObjectArc = 1, kAgentArc = 2, kConformanceArc = 3 };

/// Tables and groups of scalars in the order of their arcs. Tables of which the layout does not say
/// how rows are found, and those without columns, are left out. The layout must outlive them.
std::vector<Table> enterprise_tables(const catalog::Layout &layout);

/// A counter of the agent itself: ROOT.2.N.0.
struct AgentScalar {
  std::string name;
  uint32_t arc;
  std::string description;

  /// Without the 0 of the instance.
  Oid oid(const Oid &root) const;
};

/// Counter32s, in the order of their arcs.
const std::vector<AgentScalar> &agent_scalars();

/// ROOT.0.N, with one object: a column or scalar of a table, or oltAgentModule.
struct Notification {
  std::string name;
  uint32_t arc;
  std::string object;
  std::string description;
};

/// The arcs of the notifications.
enum class Event : uint32_t {
  kOnuUp = 1,
  kOnuAway = 2,
  kOnuBlocked = 3,
  kPortUp = 4,
  kPortDown = 5,
  kUpdateEnded = 6,
  kModuleLost = 7,
  kModuleBack = 8,
};

/// In the order of their arcs.
const std::vector<Notification> &notifications();

/// The number of a module, which only notifications hold: accessible-for-notify, an Unsigned32.
const AgentScalar &module_object();

}  // namespace olt::agent

#endif
