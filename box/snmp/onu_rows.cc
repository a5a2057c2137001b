// The readers of tables about ONUs, their parts and services, and about IPTV profiles. Nothing is
// kept here: the rows show what the other families keep.

#include <algorithm>

#include "base/clock.h"
#include "base/text.h"
#include "box/ont/families.h"
#include "box/snmp/families.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

constexpr size_t kMacAt = 16;

// Basic information about an ONU or its link.
constexpr size_t kOnuInfo = 148;
constexpr size_t kStateAt = 24;
constexpr size_t kSecondsAt = 28;
constexpr size_t kUniPortsAt = 32;
constexpr size_t kVoiceLinesAt = 36;
constexpr size_t kWanConnectionsAt = 40;
constexpr size_t kLoidAt = 48;
constexpr size_t kDescriptionAt = 72;
constexpr size_t kLinkDbaAt = 32;
constexpr size_t kUserTrafficAt = 52;
constexpr size_t kFeaturesAt = 100;

// Global information about an ONU.
constexpr size_t kGlobalLoidAt = 32;
constexpr size_t kGlobalLengthAt = 56;
constexpr size_t kGlobalHead = 60;

// Information about an ONU as an access device for voice.
constexpr size_t kIadInfo = 92;
constexpr size_t kIadLinesAt = 28;
constexpr size_t kIadInterfaceAt = 32;
constexpr size_t kLinesOnAt = 64;
constexpr size_t kAccountsAt = 68;
constexpr size_t kLinesRegisteredAt = 72;

constexpr size_t kLineStatus = 32;
constexpr size_t kLineSwitchAt = 16;
constexpr size_t kLineStateAt = 20;
constexpr size_t kLineAccountAt = 24;

constexpr size_t kWanCountAt = 16;
constexpr size_t kWanRecordSizeAt = 20;
constexpr size_t kWanLengthAt = 84;
constexpr size_t kWanHead = 88;

constexpr size_t kBinding = 88;
constexpr size_t kBoundAt = 16;
constexpr size_t kInterfaceAt = 20;

constexpr size_t kPortInfo = 68;
constexpr size_t kPortRecordAt = 16;
constexpr size_t kPortLoopbackAt = 60;
constexpr size_t kPortAlarmAt = 64;

constexpr size_t kStripTail = 34;
constexpr size_t kStripRow = 36;

/// In the target: what the kind of row is about and the library hands to its caller.
constexpr size_t kGroupLimitAt = 20;

constexpr size_t kProfileRow = 40;
constexpr size_t kChannelCountAt = 36;

/// What stands behind the head of the global information, for each part of the ONU.
enum class PartKind : uint32_t { kUniPort = 1, kVoiceLine = 2, kWanConnection = 3 };

uint32_t state_word(Presence presence) {
  switch (presence) {
    case Presence::kUp:
      return 1;
    case Presence::kAway:
      return 2;
    case Presence::kBlocked:
      break;
  }
  return 3;
}

std::span<const uint8_t> as_bytes(std::string_view text) {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

/// Begins a row of so many zeros.
void begin(Reply &reply, size_t size) {
  reply.bytes(0, std::vector<uint8_t>(size));
}

void write_place(Reply &reply, const OnuPart &place) {
  const uint32_t words[] = {kPonSlot, place.interface, place.onu, place.part};
  for (size_t i = 0; i < std::size(words); ++i) reply.u32(4 * i, words[i]);
}

/// The profile's name and, of a row that a request gives, its end.
std::string read_name(const Request &request) {
  auto field = request.bytes(kChannelProfileAt, kProfileName);
  return {field.begin(), std::find(field.begin(), field.end(), 0)};
}

/// What the key names, or the next one behind it.
template <typename Map>
auto select(const Map &map, const typename Map::key_type &key, uint32_t selector) {
  return selector == kNextRow ? map.upper_bound(key) : map.find(key);
}

class SnmpOnuRows final : public OnuFamily {
 public:
  SnmpOnuRows(Hardware &hardware, SharedOnus state, SharedIptv iptv)
      : OnuFamily("snmp-onu-rows", std::move(state), {}),
        hardware_(hardware),
        iptv_(std::move(iptv)) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        row(85, "row-onu-info", Scope::kOnu, &SnmpOnuRows::onu_info, kOnuInfo),
        row(86, "row-link-info", Scope::kOnu, &SnmpOnuRows::link_info, kOnuInfo),
        row(87, "row-global-info", Scope::kOnu, &SnmpOnuRows::global_info),
        row(88, "row-iad-info", Scope::kOnu, &SnmpOnuRows::iad_info),
        target_row(89, "row-sip-config", records.sip),
        row(90, "row-voice-account", Scope::kVoiceLine, &SnmpOnuRows::account),
        target_row(91, "row-fax-mode", records.fax),
        row(92, "row-voice-line", Scope::kVoiceLine, &SnmpOnuRows::line_status),
        row(93, "row-wan-info", Scope::kOnu, &SnmpOnuRows::wan_info),
        row(94, "row-voice-binding", Scope::kOnu, &SnmpOnuRows::binding),
        row(95, "row-port-info", Scope::kUniPort, &SnmpOnuRows::port_info),
        target_row(96, "row-port-policing", records.port_policing),
        target_row(97, "row-port-down-rate", records.port_down_rate),
        target_row(98, "row-port-vlan-mode", records.port_vlan_mode),
        target_row(99, "row-port-strip", records.multicast_strip, kStripTail, kStripRow),
        target_row(100, "row-multicast-vlans", records.multicast_vlans),
        group_limit_row(101, "row-group-limit"),
        {kMainModule, 164, "row-iptv-profile", exactly(kProfileRow),
         on(this, &SnmpOnuRows::profile)},
        {kMainModule, 165, "row-iptv-channel", exactly(kChannelRecord),
         on(this, &SnmpOnuRows::channel)},
    };
  }

 private:
  using Fill = std::function<void(const OnuPart &, const Request &, Reply &)>;

  /// A reader whose row the target selects.
  Message selected(uint32_t type, std::string_view message, Scope scope, size_t tail,
                   const Fill &fill) {
    auto read = [this, scope, fill](const Request &request, Reply &reply) {
      uint32_t kind = request.u32(kTargetKindAt);
      if (kind != kThisRow && kind != kNextRow) return Status::kBadValue;
      auto place =
          kind == kThisRow ? state().named(request, scope) : state().behind(request, scope);
      if (!place) return Status::kNotFound;
      fill(*place, request, reply);
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(kOntTarget + tail), read};
  }

  /// One whose reply is a row alone.
  Message row(uint32_t type, std::string_view message, Scope scope,
              void (SnmpOnuRows::*fill)(const OnuPart &, Reply &) const, size_t tail = 0) {
    return selected(type, message, scope, tail,
                    [this, fill](const OnuPart &place, const Request &, Reply &reply) {
                      (this->*fill)(place, reply);
                    });
  }

  /// One whose reply is the target, which then names the row, and behind it the row's record.
  Message target_row(uint32_t type, std::string_view message, const RecordTable &table,
                     size_t tail = 0, size_t size = 0) {
    return selected(
        type, message, table.scope(), tail,
        [this, &table, size](const OnuPart &place, const Request &request, Reply &reply) {
          begin(reply, kOntTarget + size);
          write_target(place, request, reply);
          reply.bytes(kOntTarget, table.at(place));
        });
  }

  Message group_limit_row(uint32_t type, std::string_view message) {
    return selected(type, message, Scope::kUniPort, 0,
                    [this](const OnuPart &place, const Request &request, Reply &reply) {
                      write_target(place, request, reply);
                      reply.bytes(kGroupLimitAt, state().records.multicast_group_limit.at(place));
                    });
  }

  void write_target(const OnuPart &place, const Request &request, Reply &reply) const {
    reply.bytes(0, request.bytes(0, kOntTarget));
    reply.u32(0, kPonSlot);
    reply.u32(4, place.interface);
    reply.u32(8, place.onu);
    if (place.part != 0) reply.u32(kTargetPartAt, place.part);
    reply.bytes(kTargetMacAt, onu_at(place).mac());
  }

  void onu_info(const OnuPart &place, Reply &reply) const {
    begin_info(place, reply);
    reply.u32(kUniPortsAt, state().parts(Scope::kUniPort));
    reply.u32(kVoiceLinesAt, state().parts(Scope::kVoiceLine));
    reply.u32(kWanConnectionsAt, wan_connections(place));
    reply.bytes(kLoidAt, as_bytes(onu_at(place).loid()));
    reply.bytes(kDescriptionAt, state().records.description.at(place));
  }

  void link_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    begin_info(place, reply);
    reply.bytes(kLinkDbaAt, records.link_dba.at(place));
    reply.bytes(kUserTrafficAt, records.user_traffic.at(place));
    reply.bytes(kFeaturesAt, records.feature.at(place));
  }

  void begin_info(const OnuPart &place, Reply &reply) const {
    TimePoint now = hardware_.now();
    const Onu &onu = onu_at(place);
    begin(reply, kOnuInfo);
    write_place(reply, place);
    reply.bytes(kMacAt, onu.mac());
    reply.u32(kStateAt, state_word(onu.presence(now)));
    auto elapsed = std::chrono::duration_cast<seconds>(now - onu.from());
    reply.u32(kSecondsAt, static_cast<uint32_t>(std::max(elapsed, seconds(0)).count()));
  }

  void global_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    begin(reply, kGlobalHead);
    write_place(reply, place);
    reply.bytes(kMacAt, onu_at(place).mac());
    reply.u32(kStateAt, state_word(onu_at(place).presence(hardware_.now())));
    reply.bytes(kGlobalLoidAt, as_bytes(onu_at(place).loid()));
    size_t at = kGlobalHead;
    auto add = [&reply, &at](PartKind kind, uint32_t number, uint32_t value) {
      for (uint32_t word : {static_cast<uint32_t>(kind), number, value}) {
        reply.u32(at, word);
        at += sizeof word;
      }
    };
    for_each_part(Scope::kUniPort, place, [&](const OnuPart &port) {
      add(PartKind::kUniPort, port.part, Request(records.port_loopback.at(port)).u32(0));
    });
    for_each_part(Scope::kVoiceLine, place, [&](const OnuPart &line) {
      add(PartKind::kVoiceLine, line.part, Request(records.line_status.at(line)).u32(0));
    });
    for (const auto &[connection, record] : records.wan_connection.kept_of(place)) {
      add(PartKind::kWanConnection, connection.part, 0);
    }
    reply.u32(kGlobalLengthAt, static_cast<uint32_t>(at - kGlobalHead));
  }

  void iad_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    begin(reply, kIadInfo);
    write_place(reply, place);
    reply.bytes(kMacAt, onu_at(place).mac());
    reply.u32(kStateAt, state_word(onu_at(place).presence(hardware_.now())));
    reply.u32(kIadLinesAt, state().parts(Scope::kVoiceLine));
    reply.bytes(kIadInterfaceAt, records.voice_interface.at(place));
    uint32_t on = 0;
    uint32_t accounts = 0;
    uint32_t registered = 0;
    for_each_part(Scope::kVoiceLine, place, [&](const OnuPart &line) {
      if (records.line_status.kept().contains(line)) ++on;
      if (records.user_account.kept().contains(line)) ++accounts;
      if (state_of(line) == LineState::kRegistered) ++registered;
    });
    reply.u32(kLinesOnAt, on);
    reply.u32(kAccountsAt, accounts);
    reply.u32(kLinesRegisteredAt, registered);
  }

  void account(const OnuPart &line, Reply &reply) const {
    reply.bytes(0, state().records.user_account.at(line));
  }

  void line_status(const OnuPart &line, Reply &reply) const {
    const OnuRecords &records = state().records;
    begin(reply, kLineStatus);
    write_place(reply, line);
    reply.bytes(kLineSwitchAt, records.line_status.at(line));
    reply.u32(kLineStateAt, static_cast<uint32_t>(state_of(line)));
    reply.u32(kLineAccountAt, records.user_account.kept().contains(line) ? 1 : 0);
  }

  void wan_info(const OnuPart &place, Reply &reply) const {
    begin(reply, kWanHead);
    write_place(reply, place);
    uint32_t count = wan_connections(place);
    reply.u32(kWanCountAt, count);
    reply.u32(kWanRecordSizeAt, kWanConnectionRecord);
    reply.u32(kWanLengthAt, count * static_cast<uint32_t>(kWanConnectionRecord));
    size_t at = kWanHead;
    for (const auto &[connection, record] : state().records.wan_connection.kept_of(place)) {
      reply.bytes(at, record);
      at += kWanConnectionRecord;
    }
  }

  void binding(const OnuPart &place, Reply &reply) const {
    const RecordTable &interfaces = state().records.voice_interface;
    begin(reply, kBinding);
    write_place(reply, place);
    reply.u32(kBoundAt, interfaces.kept().contains(place) ? 1 : 0);
    reply.bytes(kInterfaceAt, interfaces.at(place));
  }

  void port_info(const OnuPart &port, Reply &reply) const {
    const OnuRecords &records = state().records;
    begin(reply, kPortInfo);
    write_place(reply, port);
    reply.bytes(kPortRecordAt, records.port_info.at(port));
    reply.bytes(kPortLoopbackAt, records.port_loopback.at(port));
    reply.bytes(kPortAlarmAt, records.port_alarm.at(port));
  }

  Status profile(const Request &request, Reply &reply) {
    uint32_t selector = request.u32(0);
    if (selector != kThisRow && selector != kNextRow) return Status::kBadValue;
    auto profile = select(iptv_->profiles, read_name(request), selector);
    if (profile == iptv_->profiles.end()) return Status::kNotFound;
    begin(reply, kProfileRow);
    reply.u32(0, selector);
    reply.bytes(kChannelProfileAt, as_bytes(profile->first));
    reply.u32(kChannelCountAt, static_cast<uint32_t>(profile->second.size()));
    return Status::kOk;
  }

  Status channel(const Request &request, Reply &reply) {
    uint32_t selector = request.u32(0);
    if (selector != kThisRow && selector != kNextRow) return Status::kBadValue;
    std::string name = read_name(request);
    auto profile = iptv_->profiles.find(name);
    if (profile != iptv_->profiles.end()) {
      auto found = select(profile->second, request.u32(kChannelNumberAt), selector);
      if (found != profile->second.end()) return show_channel(selector, name, *found, reply);
    }
    if (selector == kThisRow) return Status::kNotFound;
    for (auto next = iptv_->profiles.upper_bound(name); next != iptv_->profiles.end(); ++next) {
      const auto &[other, channels] = *next;
      if (!channels.empty()) return show_channel(selector, other, *channels.begin(), reply);
    }
    return Status::kNotFound;
  }

  static Status show_channel(uint32_t selector, const std::string &profile,
                             const IptvState::Channels::value_type &channel, Reply &reply) {
    begin(reply, kChannelRecord);
    reply.u32(0, selector);
    reply.bytes(kChannelProfileAt, as_bytes(profile));
    reply.u32(kChannelNumberAt, channel.first);
    reply.bytes(kChannelSettingsAt, channel.second);
    return Status::kOk;
  }

  template <typename Function>
  void for_each_part(Scope scope, const OnuPart &onu, Function function) const {
    for (uint32_t part = 1; part <= state().parts(scope); ++part) {
      function(OnuPart{onu.interface, onu.onu, part});
    }
  }

  const Onu &onu_at(const OnuPart &place) const {
    return *state().find(place.interface, place.onu);
  }

  uint32_t wan_connections(const OnuPart &onu) const {
    auto connections = state().records.wan_connection.kept_of(onu);
    return static_cast<uint32_t>(std::distance(connections.begin(), connections.end()));
  }

  LineState state_of(const OnuPart &line) const {
    return line_state(state().records, line, onu_at(line).up(hardware_.now()));
  }

  Hardware &hardware_;
  SharedIptv iptv_;
};

}  // namespace

std::unique_ptr<Family> make_snmp_onu_rows(Hardware &hardware, SharedOnus onus, SharedIptv iptv) {
  return std::make_unique<SnmpOnuRows>(hardware, std::move(onus), std::move(iptv));
}

}  // namespace olt::box
