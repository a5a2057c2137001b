/// State shared by the PON families: the simulated ONUs and the records kept for them.
#ifndef OLT_BOX_PON_ONU_STATE_H
#define OLT_BOX_PON_ONU_STATE_H

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/mac.h"
#include "box/core/topology.h"
#include "box/message/message.h"
#include "box/pon/onu_record.h"

namespace olt::box {

inline constexpr uint32_t kMaxBandwidth = 1'000'000;  ///< in kbit/s

inline constexpr uint32_t kWanConnectionsPerOnu = 8;

/// Whether the OLT can reach an ONU: up, restarting (away), or not admitted (blocked).
enum class Presence : uint8_t { kUp, kAway, kBlocked };

/// "1/2".
std::string pon_name(uint32_t interface);

const char *presence_name(Presence presence);

/// A simulated ONU: its identity and its state.
class Onu {
 public:
  Onu(OnuPart place, TimePoint now) : place_(place), from_(now) {}

  const OnuPart &place() const { return place_; }
  Mac mac() const;
  /// Its identification: "onu-1-2-3" and "pw-1-2-3".
  std::string loid() const;
  std::string password() const;

  bool admitted() const { return admitted_; }
  /// Admits the ONU, which is up from the given time on. No effect on one already admitted.
  void admit(TimePoint from);
  /// Blocks the ONU until it is admitted again.
  void block(TimePoint now);
  /// Makes an admitted ONU away until the given time.
  void restart(TimePoint until) { from_ = until; }

  bool up(TimePoint now) const { return presence(now) == Presence::kUp; }
  Presence presence(TimePoint now) const;
  /// When the ONU came up or was blocked; for one that is away, when it comes up.
  TimePoint from() const { return from_; }

 private:
  OnuPart place_;
  bool admitted_ = true;
  TimePoint from_;
};

/// What a table belongs to: the ONU itself, or its ports and services. An ONU that is reset to its
/// defaults keeps the former.
enum class RecordGroup { kOnu, kService };

/// The tables of records of all ONUs.
class OnuRecords {
 public:
  struct Entry {
    RecordGroup group;
    RecordTable table;
  };

  OnuRecords() = default;
  OnuRecords(const OnuRecords &) = delete;
  OnuRecords &operator=(const OnuRecords &) = delete;

  std::deque<Entry> &entries() { return entries_; }

 private:
  RecordTable &of_onu(RecordTable table) {
    return entries_.emplace_back(Entry{RecordGroup::kOnu, std::move(table)}).table;
  }
  RecordTable &of_service(RecordTable table) {
    return entries_.emplace_back(Entry{RecordGroup::kService, std::move(table)}).table;
  }

  std::deque<Entry> entries_;  ///< never moves an entry

 public:
  RecordTable &feature = of_onu({"feature", "Basic features", Scope::kOnu, 48});
  RecordTable &description = of_onu({"description", "Descriptions", Scope::kOnu, 48, Shown::kText});
  RecordTable &link_dba =
      of_onu({"link_dba", "Logical link bandwidth", Scope::kOnu, sizeof(LinkDba)});
  RecordTable &user_traffic = of_onu({"user_traffic", "User traffic", Scope::kOnu, 48});

  RecordTable &port_alarm = of_service({"port_alarm", "UNI port alarms", Scope::kUniPort, 4});
  RecordTable &port_loopback =
      of_service({"port_loopback", "UNI port loopbacks", Scope::kUniPort, 4});
  RecordTable &port_vlan_mode = of_service({"port_vlan_mode", "UNI port VLAN modes",
                                            Scope::kUniPort, sizeof(UniVlanMode), Shown::kBytes});
  RecordTable &port_down_rate =
      of_service({"port_down_rate", "UNI port downstream rates", Scope::kUniPort, 12});
  RecordTable &port_policing =
      of_service({"port_policing", "UNI port policing", Scope::kUniPort, 16});
  RecordTable &port_info =
      of_service({"port_info", "UNI port basic information", Scope::kUniPort, 44});
  RecordTable &port_description =
      of_service({"port_description", "UNI port descriptions", Scope::kUniPort, 44, Shown::kText});

  RecordTable &multicast_group_limit =
      of_service({"multicast_group_limit", "Multicast group limits", Scope::kUniPort, 4});
  RecordTable &multicast_strip =
      of_service({"multicast_strip", "Multicast tag stripping", Scope::kUniPort,
                  sizeof(UniStripRow::strip), Shown::kBytes});
  RecordTable &multicast_vlans = of_service({"multicast_vlans", "Multicast VLANs", Scope::kUniPort,
                                             sizeof(MulticastVlans), Shown::kCountedIds});
  RecordTable &fast_leave = of_service({"fast_leave", "IGMP fast leave", Scope::kUniPort, 4});

  RecordTable &line_status =
      of_service({"line_status", "Voice line switches", Scope::kVoiceLine, 4});
  RecordTable &user_account =
      of_service({"user_account", "Voice user accounts", Scope::kVoiceLine, 80});
  RecordTable &fax = of_service({"fax", "Fax modes", Scope::kVoiceLine, 2, Shown::kBytes});
  RecordTable &sip = of_service({"sip", "SIP settings", Scope::kOnu, 45});
  RecordTable &voice_interface = of_service(
      {"voice_interface", "Interfaces of the voice service", Scope::kOnu, 32, Shown::kText});
  RecordTable &wan_connection = of_service(
      {"wan_connection", "WAN connections", Scope::kWanConnection, sizeof(WanConnection)});
  RecordTable &configuration_action =
      of_service({"configuration_action", "Configuration actions", Scope::kOnu, 4});
  RecordTable &iptv_profile =
      of_service({"iptv_profile", "IPTV profiles of ONUs", Scope::kOnu, 32, Shown::kText});
};

struct OnuState {
  OnuState(const Topology &topology, TimePoint now);

  /// Null when there is no such ONU.
  Onu *find(uint32_t interface, uint32_t onu);
  Onu *find(const OnuPart &place) { return find(place.interface, place.onu); }
  Onu *find(uint32_t interface, std::span<const uint8_t, sizeof(Mac)> mac);
  bool has_interface(uint32_t slot, uint32_t interface) const;
  /// The ONUs of an existing PON interface, in order.
  std::span<Onu> of_interface(uint32_t interface);

  /// Number of parts of this kind in each ONU; 0 for Scope::kOnu.
  uint32_t parts(Scope scope) const;
  bool has(Scope scope, const OnuPart &place) const;
  /// The row that a target names; nothing if it does not exist. Scope::kOnu ignores the part; part
  /// 0 of a voice line means line 1.
  std::optional<OnuPart> exact_row(const Request &request, Scope scope) const;
  /// The first row after the one that a target names, in the order of interface, ONU and part;
  /// nothing after the last row. Words that are all 0 come before the first row.
  std::optional<OnuPart> next_row(const Request &request, Scope scope) const;

  /// Deletes all records of the ONU and its parts.
  void forget(const OnuPart &onu);
  /// Deletes the records of its ports and services.
  void forget_services(const OnuPart &onu);

  const Topology &topology;
  std::vector<Onu> onus;  ///< by interface, then by number
  OnuRecords records;
};

using PartHandler = std::function<Status(const OnuPart &, const Request &, Reply &)>;

/// A message to the main module whose request is a target, which names an ONU or a part of it, and
/// a tail of the given lengths. Answers kNotFound if the ONU or part does not exist, and kBadValue
/// if the target's kind is not kThisRow.
Message part_message(OnuState &state, uint32_t type, std::string_view name, Scope scope,
                     Lengths tail, PartHandler act);

/// A part message that keeps the request's tail in the table.
Message set_message(OnuState &state, uint32_t type, std::string_view name, RecordTable &table);

/// A part message that answers with the record from the table.
Message read_message(OnuState &state, uint32_t type, std::string_view name,
                     const RecordTable &table);

}  // namespace olt::box

#endif
