// Row readers for the tables of ONUs, their parts and services, and IPTV profiles. The rows show
// the state of the other families.

#include <algorithm>

#include "base/clock.h"
#include "box/ont/families.h"
#include "box/snmp/families.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

/// Kinds of parts that follow the head of the global information.
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

/// A row about an ONU or a part of it.
template <typename Row>
Row row_of(const OnuPart &place) {
  return {.slot = kPonSlot, .interface = place.interface, .onu = place.onu};
}

/// The entry with the key, or the next one after it.
template <typename Map>
auto select(const Map &map, const typename Map::key_type &key, uint32_t selector) {
  return selector == kNextRow ? map.upper_bound(key) : map.find(key);
}

class SnmpOnuRows final : public OnuFamily {
 public:
  SnmpOnuRows(Hardware &hardware, OnuState &state, IptvState &iptv)
      : OnuFamily("snmp-onu-rows", state, {}), hardware_(hardware), iptv_(iptv) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    Message account = row(90, "row-voice-account", Scope::kVoiceLine, &SnmpOnuRows::voice_account);
    account.secret.reply = kAllBytes;
    Message wan = row(93, "row-wan-info", Scope::kOnu, &SnmpOnuRows::wan_info);
    wan.secret.reply = from_byte(sizeof(WanInfoHead));
    return {
        row(85, "row-onu-info", Scope::kOnu, &SnmpOnuRows::onu_info, sizeof(OnuInfoRow)),
        row(86, "row-link-info", Scope::kOnu, &SnmpOnuRows::link_info, sizeof(LinkInfoRow)),
        row(87, "row-global-info", Scope::kOnu, &SnmpOnuRows::global_info),
        row(88, "row-iad-info", Scope::kOnu, &SnmpOnuRows::iad_info),
        target_row(89, "row-sip-config", records.sip),
        account,
        target_row(91, "row-fax-mode", records.fax),
        row(92, "row-voice-line", Scope::kVoiceLine, &SnmpOnuRows::line_status),
        wan,
        row(94, "row-voice-binding", Scope::kOnu, &SnmpOnuRows::binding),
        row(95, "row-port-info", Scope::kUniPort, &SnmpOnuRows::port_info),
        target_row(96, "row-port-policing", records.port_policing),
        target_row(97, "row-port-down-rate", records.port_down_rate),
        target_row(98, "row-port-vlan-mode", records.port_vlan_mode),
        target_row(99, "row-port-strip", records.multicast_strip, sizeof(UniStripRow::strip),
                   sizeof(UniStripRow::reserved_22)),
        target_row(100, "row-multicast-vlans", records.multicast_vlans),
        group_limit_row(101, "row-group-limit"),
        {kMainModule, 164, "row-iptv-profile", exactly(sizeof(IptvProfileRow)),
         on(this, &SnmpOnuRows::profile)},
        {kMainModule, 165, "row-iptv-channel", exactly(sizeof(IptvChannelRow)),
         on(this, &SnmpOnuRows::channel)},
    };
  }

 private:
  using Fill = std::function<void(const OnuPart &, const Request &, Reply &)>;

  /// A reader of the row that the target selects.
  Message selected(uint32_t type, std::string_view message, Scope scope, size_t tail,
                   const Fill &fill) {
    auto read = [this, scope, fill](const Request &request, Reply &reply) {
      uint32_t kind = request.record<OntTarget>().target_kind;
      if (!is_selector(kind)) return Status::kBadValue;
      auto place =
          kind == kThisRow ? state().exact_row(request, scope) : state().next_row(request, scope);
      if (!place) return Status::kNotFound;
      fill(*place, request, reply);
      return Status::kOk;
    };
    return {kMainModule, type, message, exactly(sizeof(OntTarget) + tail), read};
  }

  /// A reader that replies with the row alone.
  Message row(uint32_t type, std::string_view message, Scope scope,
              void (SnmpOnuRows::*fill)(const OnuPart &, Reply &) const, size_t tail = 0) {
    return selected(type, message, scope, tail,
                    [this, fill](const OnuPart &place, const Request &, Reply &reply) {
                      (this->*fill)(place, reply);
                    });
  }

  /// A reader that replies with the target, which names the row found, the record and some zeros.
  Message target_row(uint32_t type, std::string_view message, const RecordTable &table,
                     size_t tail = 0, size_t zeros = 0) {
    Message reader =
        selected(type, message, table.scope(), tail,
                 [this, &table, zeros](const OnuPart &place, const Request &request, Reply &reply) {
                   reply.record(target_of(place, request));
                   reply.append(table.at(place));
                   reply.append(std::vector<uint8_t>(zeros));
                 });
    if (table.is_secret()) reader.secret.reply = from_byte(sizeof(OntTarget));
    return reader;
  }

  Message group_limit_row(uint32_t type, std::string_view message) {
    return selected(type, message, Scope::kUniPort, 0,
                    [this](const OnuPart &place, const Request &request, Reply &reply) {
                      reply.record(target_of(place, request));
                      reply.bytes(offsetof(GroupLimitTarget, group_limit),
                                  state().records.multicast_group_limit.at(place));
                    });
  }

  /// The request's target, naming the row found.
  OntTarget target_of(const OnuPart &place, const Request &request) const {
    auto target = request.record<OntTarget>();
    target.slot = kPonSlot;
    target.interface = place.interface;
    target.onu = place.onu;
    if (place.part != 0) target.part = place.part;
    set_bytes(target.mac, onu_at(place).mac());
    return target;
  }

  void onu_info(const OnuPart &place, Reply &reply) const {
    auto row = info_of<OnuInfoRow>(place);
    row.uni_ports = state().parts(Scope::kUniPort);
    row.voice_lines = state().parts(Scope::kVoiceLine);
    row.wan_connections = wan_connections(place);
    set_text(row.loid, onu_at(place).loid());
    set_bytes(row.description, state().records.description.at(place));
    reply.record(row);
  }

  void link_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    auto row = info_of<LinkInfoRow>(place);
    set_bytes(row.dba, records.link_dba.at(place));
    set_bytes(row.user_traffic, records.user_traffic.at(place));
    set_bytes(row.features, records.feature.at(place));
    reply.record(row);
  }

  template <typename Row>
  Row info_of(const OnuPart &place) const {
    TimePoint now = hardware_.now();
    const Onu &onu = onu_at(place);
    auto row = row_of<Row>(place);
    set_bytes(row.mac, onu.mac());
    row.state = state_word(onu.presence(now));
    auto elapsed = std::chrono::duration_cast<seconds>(now - onu.from());
    row.seconds = static_cast<uint32_t>(std::max(elapsed, seconds(0)).count());
    return row;
  }

  void global_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    std::vector<GlobalInfoPart> parts;
    auto add = [&parts](PartKind kind, uint32_t number, uint32_t value) {
      parts.push_back({static_cast<uint32_t>(kind), number, value});
    };
    for_each_part(Scope::kUniPort, place, [&](const OnuPart &port) {
      add(PartKind::kUniPort, port.part, Request(records.port_loopback.at(port)).word());
    });
    for_each_part(Scope::kVoiceLine, place, [&](const OnuPart &line) {
      add(PartKind::kVoiceLine, line.part, Request(records.line_status.at(line)).word());
    });
    for (const auto &[connection, record] : records.wan_connection.kept_of(place)) {
      add(PartKind::kWanConnection, connection.part, 0);
    }
    auto head = row_of<GlobalInfoHead>(place);
    set_bytes(head.mac, onu_at(place).mac());
    head.state = state_word(onu_at(place).presence(hardware_.now()));
    set_text(head.loid, onu_at(place).loid());
    head.length = static_cast<uint32_t>(parts.size() * sizeof(GlobalInfoPart));
    reply.record(head);
    for (const GlobalInfoPart &part : parts) reply.append(bytes_of(part));
  }

  void iad_info(const OnuPart &place, Reply &reply) const {
    const OnuRecords &records = state().records;
    auto row = row_of<IadInfoRow>(place);
    set_bytes(row.mac, onu_at(place).mac());
    row.state = state_word(onu_at(place).presence(hardware_.now()));
    row.voice_lines = state().parts(Scope::kVoiceLine);
    set_bytes(row.wan_interface, records.voice_interface.at(place));
    for_each_part(Scope::kVoiceLine, place, [&](const OnuPart &line) {
      if (records.line_status.kept().contains(line)) ++row.lines_on;
      if (records.user_account.kept().contains(line)) ++row.accounts;
      if (state_of(line) == LineState::kRegistered) ++row.registered;
    });
    reply.record(row);
  }

  void voice_account(const OnuPart &line, Reply &reply) const {
    reply.bytes(0, state().records.user_account.at(line));
  }

  void line_status(const OnuPart &line, Reply &reply) const {
    const OnuRecords &records = state().records;
    auto row = row_of<VoiceLineRow>(line);
    row.line = line.part;
    row.line_status = Request(records.line_status.at(line)).word();
    row.state = static_cast<uint32_t>(state_of(line));
    row.account = records.user_account.kept().contains(line) ? 1 : 0;
    reply.record(row);
  }

  void wan_info(const OnuPart &place, Reply &reply) const {
    auto head = row_of<WanInfoHead>(place);
    head.count = wan_connections(place);
    head.record_size = sizeof(WanConnection);
    head.length = head.count * head.record_size;
    reply.record(head);
    for (const auto &[connection, record] : state().records.wan_connection.kept_of(place)) {
      reply.append(record);
    }
  }

  void binding(const OnuPart &place, Reply &reply) const {
    const RecordTable &interfaces = state().records.voice_interface;
    auto row = row_of<VoiceBindingRow>(place);
    row.bound = interfaces.kept().contains(place) ? 1 : 0;
    set_bytes(row.wan_interface, interfaces.at(place));
    reply.record(row);
  }

  void port_info(const OnuPart &port, Reply &reply) const {
    const OnuRecords &records = state().records;
    auto row = row_of<UniPortInfoRow>(port);
    row.port = port.part;
    set_bytes(row.info, records.port_info.at(port));
    row.loopback = Request(records.port_loopback.at(port)).word();
    row.alarm = Request(records.port_alarm.at(port)).word();
    reply.record(row);
  }

  Status profile(const Request &request, Reply &reply) {
    auto index = request.record<IptvProfileRow>();
    if (!is_selector(index.selector)) return Status::kBadValue;
    auto profile = select(iptv_.profiles, text_of(index.profile), index.selector);
    if (profile == iptv_.profiles.end()) return Status::kNotFound;
    IptvProfileRow row = {.selector = index.selector,
                          .channels = static_cast<uint32_t>(profile->second.size())};
    set_text(row.profile, profile->first);
    reply.record(row);
    return Status::kOk;
  }

  Status channel(const Request &request, Reply &reply) {
    auto index = request.record<IptvChannelRow>();
    if (!is_selector(index.selector)) return Status::kBadValue;
    std::string name = text_of(index.profile);
    auto profile = iptv_.profiles.find(name);
    if (profile != iptv_.profiles.end()) {
      auto found = select(profile->second, index.number, index.selector);
      if (found != profile->second.end()) return show_channel(index.selector, name, *found, reply);
    }
    if (index.selector == kThisRow) return Status::kNotFound;
    for (auto next = iptv_.profiles.upper_bound(name); next != iptv_.profiles.end(); ++next) {
      const auto &[other, channels] = *next;
      if (!channels.empty()) return show_channel(kNextRow, other, *channels.begin(), reply);
    }
    return Status::kNotFound;
  }

  static Status show_channel(uint32_t selector, const std::string &profile,
                             const IptvState::Channels::value_type &channel, Reply &reply) {
    IptvChannelRow row = {.selector = selector, .number = channel.first};
    set_text(row.profile, profile);
    set_bytes(row.settings, channel.second);
    reply.record(row);
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
  IptvState &iptv_;
};

}  // namespace

std::unique_ptr<Family> make_snmp_onu_rows(Hardware &hardware, OnuState &onus, IptvState &iptv) {
  return std::make_unique<SnmpOnuRows>(hardware, onus, iptv);
}

}  // namespace olt::box
