#include "box/switch/switch_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "box/state/moment.h"

namespace olt::box {

namespace {

using std::chrono::milliseconds;

/// From enabling a port to its link.
constexpr std::chrono::seconds kNegotiation{2};

constexpr size_t kLinkSpeedAt = 20;
constexpr size_t kLinkDuplexAt = 24;
constexpr size_t kLinkStateAt = 64;
enum Duplex : uint32_t { kNoLink, kHalfDuplex, kFullDuplex };

milliseconds between(TimePoint from, TimePoint to) {
  return std::max(std::chrono::duration_cast<milliseconds>(to - from), milliseconds(0));
}

}  // namespace

const PortSetting *find_port_setting(size_t offset) {
  const auto *found =
      std::find_if(std::begin(kPortSettings), std::end(kPortSettings),
                   [offset](const PortSetting &setting) { return setting.offset == offset; });
  return found == std::end(kPortSettings) ? nullptr : found;
}

EthernetPort::EthernetPort(uint32_t number, const PortHardware &hardware, TimePoint now)
    : number_(number), hardware_(hardware) {
  reboot(now);
}

std::string EthernetPort::name() const {
  return fmt::format("{}/{}", kEthernetSlot, number_);
}

void EthernetPort::set(size_t offset, uint32_t value, TimePoint now) {
  uint32_t &word = words_[offset / 4];
  bool toggled = (word == 0) != (value == 0);
  if (offset == kPortEnableAt && toggled && value == 0) {
    counted_before_ = counted(now);
  } else if (offset == kPortEnableAt && toggled) {
    link_from_ = counted_from_ = now + kNegotiation;
  } else if (offset == kRstpStateAt && toggled) {
    rstp_from_ = now;
  }
  word = value;
}

void EthernetPort::restore_factory(TimePoint now) {
  for (const PortSetting &setting : kPortSettings) set(setting.offset, setting.factory, now);
}

/// Links are up as soon as the box is: negotiating takes less than starting.
void EthernetPort::reboot(TimePoint now) {
  for (const PortSetting &setting : kPortSettings) words_[setting.offset / 4] = setting.factory;
  link_from_ = rstp_from_ = counted_from_ = now;
  counted_before_ = milliseconds(0);
}

void EthernetPort::show(TimePoint now, Reply &reply) const {
  reply.u32(0, kEthernetSlot);
  reply.u32(4, number_);
  for (const PortSetting &setting : kPortSettings) {
    reply.u32(setting.offset, words_[setting.offset / 4]);
  }
  bool up = link_up(now);
  uint32_t duplex = hardware_.full_duplex ? kFullDuplex : kHalfDuplex;
  reply.u32(kLinkSpeedAt, link_speed(now));
  reply.u32(kLinkDuplexAt, up ? duplex : kNoLink);
  reply.u32(kLinkStateAt, up ? 1 : 0);
}

bool EthernetPort::link_up(TimePoint now) const {
  if (setting(kPortEnableAt) == 0 || !hardware_.plugged) return false;
  // A clock that was set back must not keep the link down until it has caught up.
  return link_from_ <= now || link_from_ - now > kNegotiation;
}

milliseconds EthernetPort::counted(TimePoint now) const {
  return counted_before_ + (link_up(now) ? between(counted_from_, now) : milliseconds(0));
}

void EthernetPort::clear_counters(TimePoint now) {
  counted_before_ = milliseconds(0);
  counted_from_ = std::max(link_from_, now);
}

Json EthernetPort::running() const {
  return {{"port", number_},
          {"link_from", to_milliseconds(link_from_)},
          {"rstp_from", to_milliseconds(rstp_from_)},
          {"counted_from", to_milliseconds(counted_from_)},
          {"counted_before", static_cast<uint64_t>(counted_before_.count())}};
}

void EthernetPort::resume(ObjectReader &reader) {
  link_from_ = read_time(reader, "link_from");
  rstp_from_ = read_time(reader, "rstp_from");
  counted_from_ = read_time(reader, "counted_from");
  counted_before_ = milliseconds(reader.number("counted_before", kMoments));
}

SwitchState::SwitchState(const Topology &topology, TimePoint now)
    : memberships(topology.ethernet_ports) {
  for (uint32_t number = 1; number <= topology.ethernet_ports; ++number) {
    ports.emplace_back(number, topology.port(number), now);
  }
}

EthernetPort *SwitchState::find(uint32_t slot, uint32_t port) {
  return slot == kEthernetSlot && port >= 1 && port <= ports.size() ? &ports[port - 1] : nullptr;
}

EthernetPort *SwitchState::find(const Request &request, size_t slot_at) {
  return find(request.u32(slot_at), request.u32(slot_at + 4));
}

uint32_t SwitchState::read_port(ObjectReader &reader) const {
  return static_cast<uint32_t>(reader.number("port", {1, ports.size()}));
}

}  // namespace olt::box
