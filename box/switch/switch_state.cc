#include "box/switch/switch_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace olt::box {

namespace {

using std::chrono::milliseconds;

/// From enabling a port until its link is up.
constexpr std::chrono::seconds kNegotiation{2};

/// In milliseconds; longer than any box has been up.
constexpr NumberRange kMoments = {0, uint64_t{UINT32_MAX} * 1000};

enum Duplex : uint32_t { kNoLink, kHalfDuplex, kFullDuplex };

milliseconds between(TimePoint from, TimePoint to) {
  return std::max(std::chrono::duration_cast<milliseconds>(to - from), milliseconds(0));
}

}  // namespace

const PortSetting &setting_of(PortWord word) {
  return *std::find_if(std::begin(kPortSettings), std::end(kPortSettings),
                       [word](const PortSetting &setting) { return setting.word == word; });
}

EthernetPort::EthernetPort(uint32_t number, const PortHardware &hardware, TimePoint now)
    : number_(number), hardware_(hardware), settings_{kEthernetSlot, number} {
  reboot(now);
}

std::string EthernetPort::name() const {
  return fmt::format("{}/{}", kEthernetSlot, number_);
}

void EthernetPort::set(PortWord word, uint32_t value, TimePoint now) {
  uint32_t &setting = settings_.*word;
  bool toggled = (setting == 0) != (value == 0);
  if (word == &PortRecord::port_enable && toggled && value == 0) {
    counted_before_ = counted(now);
  } else if (word == &PortRecord::port_enable && toggled) {
    link_from_ = counted_from_ = now + kNegotiation;
  } else if (word == &PortRecord::rstp_state && toggled) {
    rstp_from_ = now;
  }
  setting = value;
}

void EthernetPort::restore_factory(TimePoint now) {
  for (const PortSetting &setting : kPortSettings) set(setting.word, setting.factory, now);
}

/// After a start links are up at once: negotiation takes less time than starting.
void EthernetPort::reboot(TimePoint now) {
  for (const PortSetting &setting : kPortSettings) settings_.*setting.word = setting.factory;
  link_from_ = rstp_from_ = counted_from_ = now;
  counted_before_ = milliseconds(0);
}

PortRecord EthernetPort::record(TimePoint now) const {
  PortRecord record = settings_;
  bool up = link_up(now);
  uint32_t duplex = hardware_.full_duplex ? kFullDuplex : kHalfDuplex;
  record.link_speed = link_speed(now);
  record.link_duplex = up ? duplex : kNoLink;
  record.link_state = up ? 1 : 0;
  return record;
}

bool EthernetPort::link_up(TimePoint now) const {
  if (setting(&PortRecord::port_enable) == 0 || !hardware_.plugged) return false;
  // When the clock is set back, the link must not stay down until the clock has caught up.
  return link_from_ <= now || link_from_ - now > kNegotiation;
}

milliseconds EthernetPort::counted(TimePoint now) const {
  return counted_before_ + (link_up(now) ? between(counted_from_, now) : milliseconds(0));
}

void EthernetPort::clear_counters(TimePoint now) {
  counted_before_ = milliseconds(0);
  counted_from_ = std::max(link_from_, now);
}

void EthernetPort::describe_running(Archive &archive) {
  archive.moment("link_from", link_from_);
  archive.moment("rstp_from", rstp_from_);
  archive.moment("counted_from", counted_from_);
  auto counted = static_cast<uint64_t>(counted_before_.count());
  archive.number("counted_before", counted, kMoments);
  counted_before_ = milliseconds(counted);
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

void SwitchState::describe_ports(Archive &archive,
                                 const std::function<void(EthernetPort &)> &describe) {
  archive.list(
      "ports", ports.size(),
      [&] {
        for (EthernetPort &port : ports) {
          archive.element([&] {
            uint32_t number = port.number();
            describe_port(archive, number);
            describe(port);
          });
        }
      },
      [&] {
        uint32_t number = 0;
        describe_port(archive, number);
        describe(ports[number - 1]);
      });
}

}  // namespace olt::box
