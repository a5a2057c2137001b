// The settings of the IGMP proxy, and the multicast VLANs.

#include <fmt/format.h>

#include "box/switch/families.h"

namespace olt::box {

namespace {

constexpr IgmpProxy kFactory = {
    .query_interval = 125, .response_time = 10, .robustness = 2, .last_member_query_interval = 1};

class SwitchMulticast final : public Family {
 public:
  explicit SwitchMulticast(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "switch-multicast"; }

  std::vector<Message> messages() override {
    return {
        vlan_message(149, "add-multicast-vlans", 0, on(this, &SwitchMulticast::add)),
        vlan_message(150, "delete-multicast-vlans", 0, on(this, &SwitchMulticast::remove)),
        {kMainModule, 151, "igmp-proxy", exactly(0), on(this, &SwitchMulticast::proxy)},
        {kMainModule, 152, "set-igmp-proxy", exactly(sizeof(IgmpProxy)),
         on(this, &SwitchMulticast::set_proxy)},
        {kMainModule, 153, "igmp-proxy-dump", exactly(0), on(this, &SwitchMulticast::dump)},
    };
  }

  void configuration(Archive &archive) override {
    archive.bytes("igmp_proxy", bytes_of(proxy_));
    describe_ids(archive, "vlans", vlans_);
  }

  void restore_factory() override {
    proxy_ = kFactory;
    vlans_.reset();
  }

  void describe_configuration(Report &report) const override {
    report.section("IGMP proxy");
    report.row({"Enabled", fmt::to_string(proxy_.enabled)});
    report.row({"Query interval in s", fmt::to_string(proxy_.query_interval)});
    report.row({"Response time in s", fmt::to_string(proxy_.response_time)});
    report.row({"Robustness", fmt::to_string(proxy_.robustness)});
    report.row(
        {"Last member query interval in s", fmt::to_string(proxy_.last_member_query_interval)});
    report.row({"Fast leave", fmt::to_string(proxy_.fast_leave)});
    report.section("Multicast VLANs");
    for (std::string &line : ids_to_cells(vlans_, 80)) report.row({std::move(line)});
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status add(const std::vector<IdRange> &ranges) {
    vlans_ |= ids_in(ranges);
    return Status::kOk;
  }

  Status remove(const std::vector<IdRange> &ranges) {
    auto vlans = known_ids(ranges, vlans_);
    if (!vlans) return Status::kNotFound;
    vlans_ &= ~*vlans;
    return Status::kOk;
  }

  Status proxy(Reply &reply) {
    reply.record(proxy_);
    return Status::kOk;
  }

  Status set_proxy(const Request &request) {
    proxy_ = request.record<IgmpProxy>();
    hardware_.events().record(Level::kNotice, kMainModule, "IGMP proxy set");
    return Status::kOk;
  }

  Status dump(Reply &reply) {
    auto ranges = ranges_of(vlans_);
    reply.record(proxy_);
    reply.append(bytes_of(static_cast<uint32_t>(ranges.size())));
    for (auto [first, last] : ranges) reply.append(bytes_of(VlanElement{first, last}));
    return Status::kOk;
  }

  Hardware &hardware_;
  IgmpProxy proxy_ = kFactory;
  IdSet vlans_;
};

}  // namespace

std::unique_ptr<Family> make_switch_multicast(Hardware &hardware) {
  return std::make_unique<SwitchMulticast>(hardware);
}

}  // namespace olt::box
