/// What the families of the PON side share: the simulated ONUs, and what is kept for each.
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

inline constexpr uint32_t kMostBandwidth = 1'000'000;  ///< in kbit/s

inline constexpr uint32_t kWanConnectionsPerOnu = 8;

/// How an ONU stands with the OLT.
enum class Presence : uint8_t { kUp, kAway, kBlocked };

/// "1/2".
std::string pon_name(uint32_t interface);

const char *presence_name(Presence presence);

/// A simulated ONU: what it is, and whether it is up.
class Onu {
 public:
  Onu(OnuPart place, TimePoint now) : place_(place), from_(now) {}

  const OnuPart &place() const { return place_; }
  Mac mac() const;
  /// What it identifies itself with, "onu-1-2-3" and "pw-1-2-3".
  std::string loid() const;
  std::string password() const;

  bool admitted() const { return admitted_; }
  /// Lets it come up at that time, if it is not up or coming up already.
  void admit(TimePoint from);
  /// Takes it down until it is admitted again.
  void block(TimePoint now);
  /// Takes an admitted one away until then.
  void restart(TimePoint until) { from_ = until; }

  bool up(TimePoint now) const { return presence(now) == Presence::kUp; }
  Presence presence(TimePoint now) const;
  /// Since when it is up or blocked, or when it is to come up again.
  TimePoint from() const { return from_; }

 private:
  OnuPart place_;
  bool admitted_ = true;
  TimePoint from_;
};

/// What a table belongs to: the ONU itself, or its ports and services. An ONU that is set back to
/// its defaults keeps the former.
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
  RecordTable &link_dba = of_onu({"link_dba", "Link bandwidth", Scope::kOnu, sizeof(LinkDba)});
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
      of_service({"user_account", "Voice user accounts", Scope::kVoiceLine, 80, Shown::kBytes});
  RecordTable &fax = of_service({"fax", "Fax modes", Scope::kVoiceLine, 2, Shown::kBytes});
  RecordTable &sip = of_service({"sip", "SIP settings", Scope::kOnu, 45, Shown::kBytes});
  RecordTable &voice_interface = of_service(
      {"voice_interface", "Interfaces of the voice service", Scope::kOnu, 32, Shown::kText});
  RecordTable &wan_connection =
      of_service({"wan_connection", "WAN connections", Scope::kWanConnection, sizeof(WanConnection),
                  Shown::kBytes});
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
  /// The ONUs of one PON interface, which must exist, in order.
  std::span<Onu> of_interface(uint32_t interface);

  /// How many parts of the kind an ONU has; 0 for Scope::kOnu.
  uint32_t parts(Scope scope) const;
  bool has(Scope scope, const OnuPart &place) const;
  /// What a target names by its words; nothing when there is no such thing. The part does not
  /// matter to Scope::kOnu; a voice line that is not named is the first.
  std::optional<OnuPart> named(const Request &request, Scope scope) const;
  /// The row behind what a target names, in the order of interface, ONU and part; the first one for
  /// words that are all 0. Nothing behind the last row.
  std::optional<OnuPart> behind(const Request &request, Scope scope) const;

  /// Makes all that is kept for the ONU as from the factory.
  void forget(const OnuPart &onu);
  /// Does so with what is kept for its ports and services.
  void forget_services(const OnuPart &onu);

  const Topology &topology;
  std::vector<Onu> onus;  ///< by interface, then by number
  OnuRecords records;
};

using PartHandler = std::function<Status(const OnuPart &, const Request &, Reply &)>;

/// A message to the main module whose request names an ONU or a part of it by its target record,
/// with so many bytes behind it. Answers with kNotFound when there is no such thing and with
/// kBadValue when the target is of a kind other than kThisRow.
Message part_message(OnuState &state, uint32_t type, std::string_view name, Scope scope,
                     Lengths tail, PartHandler act);

/// One that keeps what stands behind the target in the table.
Message set_message(OnuState &state, uint32_t type, std::string_view name, RecordTable &table);

/// One that answers with what the table keeps.
Message read_message(OnuState &state, uint32_t type, std::string_view name,
                     const RecordTable &table);

}  // namespace olt::box

#endif
