#include "box/pon/onu_state.h"

#include <fmt/format.h>

#include <algorithm>

namespace olt::box {

Mac Onu::mac() const {
  return {0x02,
          0x20,
          static_cast<uint8_t>(place_.interface),
          static_cast<uint8_t>(place_.onu >> 8),
          static_cast<uint8_t>(place_.onu),
          0x01};
}

std::string Onu::loid() const {
  return fmt::format("onu-{}-{}-{}", kPonSlot, place_.interface, place_.onu);
}

std::string Onu::password() const {
  return fmt::format("pw-{}-{}-{}", kPonSlot, place_.interface, place_.onu);
}

void Onu::admit(TimePoint from) {
  if (admitted_) return;
  admitted_ = true;
  from_ = from;
}

void Onu::block(TimePoint now) {
  admitted_ = false;
  from_ = now;
}

Presence Onu::presence(TimePoint now) const {
  if (!admitted_) return Presence::kBlocked;
  // When the clock is set back, the ONU must not stay away until the clock has caught up.
  bool away = from_ > now && from_ - now <= kMaxRestart;
  return away ? Presence::kAway : Presence::kUp;
}

std::string pon_name(uint32_t interface) {
  return fmt::format("{}/{}", kPonSlot, interface);
}

const char *presence_name(Presence presence) {
  switch (presence) {
    case Presence::kUp:
      return "up";
    case Presence::kAway:
      return "away";
    case Presence::kBlocked:
      break;
  }
  return "blocked";
}

OnuState::OnuState(const Topology &topology_of_box, TimePoint now) : topology(topology_of_box) {
  onus.reserve(size_t{topology.pon_interfaces} * topology.onus_per_interface);
  for (uint32_t interface = 1; interface <= topology.pon_interfaces; ++interface) {
    for (uint32_t onu = 1; onu <= topology.onus_per_interface; ++onu) {
      onus.emplace_back(OnuPart{interface, onu}, now);
    }
  }
}

Onu *OnuState::find(uint32_t interface, uint32_t onu) {
  if (!has(Scope::kOnu, {interface, onu})) return nullptr;
  return &onus[size_t{interface - 1} * topology.onus_per_interface + onu - 1];
}

Onu *OnuState::find(uint32_t interface, std::span<const uint8_t, sizeof(Mac)> mac) {
  Onu *onu = find(interface, uint32_t{mac[3]} << 8 | mac[4]);
  if (onu == nullptr) return nullptr;
  Mac own = onu->mac();
  return std::equal(own.begin(), own.end(), mac.begin()) ? onu : nullptr;
}

bool OnuState::has_interface(uint32_t slot, uint32_t interface) const {
  return slot == kPonSlot && interface >= 1 && interface <= topology.pon_interfaces;
}

std::span<Onu> OnuState::of_interface(uint32_t interface) {
  size_t count = topology.onus_per_interface;
  return std::span(onus).subspan((interface - 1) * count, count);
}

uint32_t OnuState::parts(Scope scope) const {
  switch (scope) {
    case Scope::kUniPort:
      return topology.uni_ports_per_onu;
    case Scope::kVoiceLine:
      return topology.voice_lines_per_onu;
    case Scope::kWanConnection:
      return kWanConnectionsPerOnu;
    case Scope::kOnu:
      break;
  }
  return 0;
}

bool OnuState::has(Scope scope, const OnuPart &place) const {
  bool onu = has_interface(kPonSlot, place.interface) && place.onu >= 1 &&
             place.onu <= topology.onus_per_interface;
  bool whole = scope == Scope::kOnu;
  return onu && (whole ? place.part == 0 : place.part >= 1 && place.part <= parts(scope));
}

std::optional<OnuPart> OnuState::exact_row(const Request &request, Scope scope) const {
  auto target = request.record<OntTarget>();
  OnuPart place{target.interface, target.onu, 0};
  if (scope != Scope::kOnu) place.part = target.part;
  if (scope == Scope::kVoiceLine && place.part == 0) place.part = 1;
  if (target.slot != kPonSlot || !has(scope, place)) return std::nullopt;
  return place;
}

std::optional<OnuPart> OnuState::next_row(const Request &request, Scope scope) const {
  auto target = request.record<OntTarget>();
  if (target.slot > kPonSlot || (scope != Scope::kOnu && parts(scope) == 0)) return std::nullopt;
  bool whole = scope == Scope::kOnu;
  OnuPart row;
  if (target.slot == kPonSlot) row = {target.interface, target.onu, target.part};
  OnuPart first_of_interface{1, 1, whole ? 0U : 1U};
  if (row.interface == 0) return first_of_interface;
  if (row.interface > topology.pon_interfaces) return std::nullopt;
  first_of_interface.interface = row.interface;
  if (row.onu == 0) return first_of_interface;
  if (row.onu <= topology.onus_per_interface && !whole && row.part < parts(scope)) {
    return OnuPart{row.interface, row.onu, row.part + 1};
  }
  if (row.onu < topology.onus_per_interface) {
    return OnuPart{row.interface, row.onu + 1, first_of_interface.part};
  }
  if (row.interface == topology.pon_interfaces) return std::nullopt;
  ++first_of_interface.interface;
  return first_of_interface;
}

void OnuState::forget(const OnuPart &onu) {
  for (auto &[group, table] : records.entries()) table.forget(onu);
}

void OnuState::forget_services(const OnuPart &onu) {
  for (auto &[group, table] : records.entries()) {
    if (group == RecordGroup::kService) table.forget(onu);
  }
}

Message part_message(OnuState &state, uint32_t type, std::string_view name, Scope scope,
                     Lengths tail, PartHandler act) {
  auto handler = [&state, scope, act = std::move(act)](const Request &request, Reply &reply) {
    if (request.record<OntTarget>().target_kind != kThisRow) return Status::kBadValue;
    auto place = state.exact_row(request, scope);
    return place ? act(*place, request, reply) : Status::kNotFound;
  };
  return {kMainModule,
          type,
          name,
          {sizeof(OntTarget) + tail.min, sizeof(OntTarget) + tail.max},
          handler};
}

Message set_message(OnuState &state, uint32_t type, std::string_view name, RecordTable &table) {
  Message message = part_message(state, type, name, table.scope(), exactly(table.size()),
                                 [&table](const OnuPart &place, const Request &request, Reply &) {
                                   table.set(place, request.bytes(sizeof(OntTarget), table.size()));
                                   return Status::kOk;
                                 });
  if (table.is_secret()) message.secret.request = from_byte(sizeof(OntTarget));
  return message;
}

Message read_message(OnuState &state, uint32_t type, std::string_view name,
                     const RecordTable &table) {
  Message message = part_message(state, type, name, table.scope(), exactly(0),
                                 [&table](const OnuPart &place, const Request &, Reply &reply) {
                                   reply.bytes(0, table.at(place));
                                   return Status::kOk;
                                 });
  if (table.is_secret()) message.secret.reply = kAllBytes;
  return message;
}

}  // namespace olt::box
