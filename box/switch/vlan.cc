// The VLAN table with its queries, and the trunk membership of the ports.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/text.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

enum QueryKind : uint32_t { kByInterface, kByList, kByDescription, kAll };

constexpr size_t kListColumn = 40;
constexpr size_t kMaxShownInEvent = 80;

constexpr uint16_t kFactoryVlan = 1;
constexpr std::string_view kFactoryDescription = "default";

/// The tagged or the untagged VLANs of a membership.
using Side = IdSet Membership::*;

class SwitchVlan final : public Family {
 public:
  SwitchVlan(Hardware &hardware, SwitchState &state) : hardware_(hardware), state_(state) {
    SwitchVlan::restore_factory();
  }

  std::string_view name() const override { return "switch-vlan"; }

  std::vector<Message> messages() override {
    constexpr Side kTagged = &Membership::tagged;
    constexpr Side kUntagged = &Membership::untagged;
    return {
        vlan_message(19, "add-vlans", 0, on(this, &SwitchVlan::add)),
        vlan_message(20, "delete-vlans", 0, on(this, &SwitchVlan::remove)),
        {kMainModule,
         21,
         "describe-vlans",
         {0, sizeof(DescribedVlan) * kLastVlan},
         on(this, &SwitchVlan::describe)},
        vlan_message(22, "undescribe-vlans", 0, on(this, &SwitchVlan::undescribe)),
        {kMainModule,
         23,
         "vlan-query",
         {sizeof(VlanQuery), sizeof(VlanQuery) + sizeof(VlanElement) * kLastVlan},
         on(this, &SwitchVlan::query)},
        trunk_message(25, "add-trunk-tagged", kTagged, kUntagged, false),
        trunk_message(26, "add-trunk-untagged", kUntagged, kTagged, false),
        trunk_message(27, "set-trunk-tagged", kTagged, kUntagged, true),
        trunk_message(28, "set-trunk-untagged", kUntagged, kTagged, true),
    };
  }

  void configuration(Archive &archive) override {
    describe_ids(archive, "vlans", state_.vlans);
    describe_descriptions(archive);
    state_.describe_ports(archive, [&](EthernetPort &port) {
      Membership &membership = membership_of(port);
      archive.number("trunk_value", membership.trunk_value);
      describe_side(archive, "tagged", membership.tagged, state_.vlans);
      describe_side(archive, "untagged", membership.untagged, state_.vlans & ~membership.tagged);
    });
  }

  void restore_factory() override {
    state_.vlans = IdSet().set(kFactoryVlan);
    state_.descriptions = {{kFactoryVlan, std::string(kFactoryDescription)}};
    for (Membership &membership : state_.memberships) {
      membership = {.untagged = IdSet().set(kFactoryVlan)};
    }
  }

  void describe_configuration(Report &report) const override {
    report.section("VLANs", {"VLANs", "Description"});
    for (const auto &[range, text] : described_ranges()) {
      report.row({ids_to_cell(ids_in(range)), text});
    }
    report.section("Trunks", {"Port", "Trunk value", "Tagged VLANs", "Untagged VLANs"});
    for (const EthernetPort &port : state_.ports) {
      const Membership &membership = membership_of(port);
      auto tagged = ids_to_cells(membership.tagged, kListColumn);
      auto untagged = ids_to_cells(membership.untagged, kListColumn);
      size_t lines = std::max(tagged.size(), untagged.size());
      tagged.resize(lines);
      untagged.resize(lines);
      report.row({port.name(), fmt::to_string(membership.trunk_value), tagged[0], untagged[0]});
      for (size_t i = 1; i < lines; ++i) report.row({"", "", tagged[i], untagged[i]});
    }
  }

  size_t footprint() const override {
    return sizeof *this + state_.memberships.capacity() * sizeof(Membership) +
           state_.descriptions.size() * (sizeof(uint16_t) + sizeof(std::string));
  }

 private:
  using Ranges = std::vector<IdRange>;

  void describe_descriptions(Archive &archive) {
    if (archive.is_reading()) state_.descriptions.clear();
    auto describe = [&](uint16_t &vlan, std::string &text) {
      archive.number("vlan", vlan, {1, kLastVlan});
      if (!state_.vlans[vlan]) archive.refuse("vlan", "a VLAN of the table");
      archive.text("text", text, sizeof(DescribedVlan::description));
      if (text.find('\0') != std::string::npos) archive.refuse("text", "a text without zeros");
    };
    archive.list(
        "descriptions", kLastVlan,
        [&] {
          for (auto &[key, text] : state_.descriptions) {
            archive.element([&, vlan = key, &text = text]() mutable { describe(vlan, text); });
          }
        },
        [&] {
          uint16_t vlan = 0;
          std::string text;
          describe(vlan, text);
          state_.descriptions[vlan] = text;
        });
  }

  static void describe_side(Archive &archive, std::string_view key, IdSet &side,
                            const IdSet &possible) {
    describe_ids(archive, key, side);
    if (archive.is_reading() && (side & ~possible).any()) {
      archive.refuse(key, "VLANs of the table, each on one side");
    }
  }

  Status add(const Ranges &ranges) {
    IdSet vlans = ids_in(ranges);
    state_.vlans |= vlans;
    record("added", vlans);
    return Status::kOk;
  }

  Status remove(const Ranges &ranges) {
    auto vlans = known_ids(ranges, state_.vlans);
    if (!vlans) return Status::kNotFound;
    state_.vlans &= ~*vlans;
    forget_descriptions(*vlans);
    for (Membership &membership : state_.memberships) {
      membership.tagged &= ~*vlans;
      membership.untagged &= ~*vlans;
    }
    record("deleted", *vlans);
    return Status::kOk;
  }

  Status describe(const Request &request) {
    auto elements = request.records<DescribedVlan>(0);
    auto ranges = read_ranges(elements);
    if (!ranges) return Status::kBadValue;
    auto vlans = known_ids(*ranges, state_.vlans);
    if (!vlans) return Status::kNotFound;
    // If several elements name a VLAN, the last one counts; only that one is copied.
    std::array<uint16_t, kLastVlan + 1> element_of = {};
    for (size_t i = 0; i < ranges->size(); ++i) {
      auto [first, last] = (*ranges)[i];
      std::fill(element_of.begin() + first, element_of.begin() + last + 1,
                static_cast<uint16_t>(i));
    }
    for (uint16_t vlan = 1; vlan <= kLastVlan; ++vlan) {
      if (!(*vlans)[vlan]) continue;
      set_description(vlan, text_of(elements[element_of[vlan]].description));
    }
    record("described", *vlans);
    return Status::kOk;
  }

  void set_description(uint16_t vlan, std::string text) {
    if (text.empty()) {
      state_.descriptions.erase(vlan);
    } else {
      state_.descriptions[vlan] = std::move(text);
    }
  }

  Status undescribe(const Ranges &ranges) {
    auto vlans = known_ids(ranges, state_.vlans);
    if (!vlans) return Status::kNotFound;
    forget_descriptions(*vlans);
    record("no longer described", *vlans);
    return Status::kOk;
  }

  void forget_descriptions(const IdSet &vlans) {
    std::erase_if(state_.descriptions, [&vlans](const auto &entry) { return vlans[entry.first]; });
  }

  Message trunk_message(uint32_t type, std::string_view message, Side side, Side other,
                        bool replace) {
    auto act = [this, side, other, replace](const Request &request, const Ranges &ranges) {
      auto head = request.record<TrunkHead>();
      EthernetPort *port = state_.find(head.slot, head.port);
      if (port == nullptr) return Status::kNotFound;
      auto vlans = known_ids(ranges, state_.vlans);
      if (!vlans) return Status::kNotFound;
      Membership &membership = membership_of(*port);
      if (replace) (membership.*side).reset();
      membership.*side |= *vlans;
      membership.*other &= ~*vlans;
      membership.trunk_value = head.trunk_value;
      hardware_.events().record(Level::kNotice, kMainModule,
                                fmt::format("port {}: VLANs of its trunk changed", port->name()));
      return Status::kOk;
    };
    return vlan_message(type, message, sizeof(TrunkHead), act);
  }

  Status query(const Request &request, Reply &reply) {
    auto query = request.record<VlanQuery>();
    if (query.kind != kByList && request.size() != sizeof query) return Status::kBadLength;
    switch (query.kind) {
      case kByInterface:
        return list_port(state_.find(query.slot, query.port), reply);
      case kByList:
        return list_named(request, reply);
      case kByDescription:
        return list_described(query, reply);
      case kAll:
        return list("VLANs of " + hardware_.topology().name, state_.vlans, reply);
      default:
        return Status::kBadValue;
    }
  }

  Status list_port(const EthernetPort *port, Reply &reply) {
    if (port == nullptr) return Status::kNotFound;
    const Membership &membership = membership_of(*port);
    Report report("VLANs of port " + port->name());
    report.section("Port");
    report.row({"VLAN mode", fmt::format("{} {}", port->setting(&PortRecord::vlanmode_first),
                                         port->setting(&PortRecord::vlanmode_second))});
    report.row({"Trunk value", fmt::to_string(membership.trunk_value)});
    IdSet vlans = membership.tagged | membership.untagged;
    report.section(counted(vlans.count(), "VLAN"), {"VLAN", "Membership", "Description"});
    for_each(vlans, [&](uint16_t vlan) {
      report.row({fmt::to_string(vlan), membership.tagged[vlan] ? "tagged" : "untagged",
                  description_of(vlan)});
    });
    return hardware_.list_behind_header("vlan", report.text(), reply);
  }

  Status list_named(const Request &request, Reply &reply) {
    auto ranges = read_ranges(request.records<VlanElement>(sizeof(VlanQuery)));
    if (!ranges) return Status::kBadValue;
    return list("VLANs by list", ids_in(*ranges) & state_.vlans, reply);
  }

  Status list_described(const VlanQuery &query, Reply &reply) {
    auto searched = terminated_text_of(query.description);
    if (!searched) return Status::kBadValue;
    IdSet vlans;
    for (const auto &[vlan, text] : state_.descriptions) {
      if (text == *searched) vlans.set(vlan);
    }
    return list(fmt::format("VLANs described as \"{}\"", printable(*searched)), vlans, reply);
  }

  Status list(std::string title, const IdSet &vlans, Reply &reply) {
    Report report(std::move(title));
    report.section(counted(vlans.count(), "VLAN"),
                   {"VLAN", "Tagged ports", "Untagged ports", "Description"});
    for_each(vlans, [this, &report](uint16_t vlan) {
      report.row({fmt::to_string(vlan), ports_in(vlan, &Membership::tagged),
                  ports_in(vlan, &Membership::untagged), description_of(vlan)});
    });
    return hardware_.list_behind_header("vlan", report.text(), reply);
  }

  template <typename Function>
  static void for_each(const IdSet &vlans, Function function) {
    for (uint16_t vlan = 1; vlan <= kLastVlan; ++vlan) {
      if (vlans[vlan]) function(vlan);
    }
  }

  std::string description_of(uint16_t vlan) const {
    auto found = state_.descriptions.find(vlan);
    return found == state_.descriptions.end() ? "-" : printable(found->second);
  }

  std::string ports_in(uint16_t vlan, Side side) const {
    IdSet ports;
    for (const EthernetPort &port : state_.ports) {
      if ((membership_of(port).*side)[vlan]) ports.set(port.number());
    }
    return ids_to_cell(ports, fmt::format("{}/", kEthernetSlot));
  }

  /// Ranges of VLANs with the same description, and the description.
  std::vector<std::pair<IdRange, std::string>> described_ranges() const {
    std::vector<std::pair<IdRange, std::string>> ranges;
    for_each(state_.vlans, [this, &ranges](uint16_t vlan) {
      std::string text = description_of(vlan);
      bool continues = !ranges.empty() && ranges.back().first.last + 1 == vlan;
      if (continues && ranges.back().second == text) {
        ranges.back().first.last = vlan;
      } else {
        ranges.emplace_back(IdRange{vlan, vlan}, std::move(text));
      }
    });
    return ranges;
  }

  Membership &membership_of(const EthernetPort &port) const {
    return state_.memberships[port.number() - 1];
  }

  void record(std::string_view what, const IdSet &vlans) {
    std::string text = ids_to_cell(vlans);
    if (text.size() > kMaxShownInEvent) {
      text.resize(kMaxShownInEvent);
      text += "...";
    }
    hardware_.events().record(Level::kNotice, kMainModule, fmt::format("VLANs {} {}", text, what));
  }

  Hardware &hardware_;
  SwitchState &state_;
};

}  // namespace

std::unique_ptr<Family> make_switch_vlan(Hardware &hardware, SwitchState &state) {
  return std::make_unique<SwitchVlan>(hardware, state);
}

}  // namespace olt::box
