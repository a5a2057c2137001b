// The IGMP proxy's settings, kept byte for byte, and the multicast VLANs.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/text.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

constexpr size_t kRecord = 24;
constexpr std::string_view kFields[] = {
    "Enabled",
    "Query interval in s",
    "Response time in s",
    "Robustness",
    "Last member query interval in s",
    "Fast leave",
};
static_assert(std::size(kFields) * 4 == kRecord);

using Proxy = std::array<uint8_t, kRecord>;
constexpr Proxy kFactory = {0, 0, 0, 0, 125, 0, 0, 0, 10, 0, 0, 0, 2, 0, 0, 0, 1};

class SwitchMulticast final : public Family {
 public:
  explicit SwitchMulticast(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "switch-multicast"; }

  std::vector<Message> messages() override {
    return {
        vlan_message(149, "add-multicast-vlans", 0,
                     [this](const Request &, const std::vector<IdRange> &ranges) {
                       vlans_ |= ids_in(ranges);
                       return Status::kOk;
                     }),
        vlan_message(
            150, "delete-multicast-vlans", 0,
            [this](const Request &, const std::vector<IdRange> &ranges) { return remove(ranges); }),
        {kMainModule, 151, "igmp-proxy", exactly(0), on(this, &SwitchMulticast::proxy)},
        {kMainModule, 152, "set-igmp-proxy", exactly(kRecord),
         on(this, &SwitchMulticast::set_proxy)},
        {kMainModule, 153, "igmp-proxy-dump", exactly(0), on(this, &SwitchMulticast::dump)},
    };
  }

  Json configuration() const override {
    return {{"igmp_proxy", to_hex(proxy_)}, {"vlans", ids_to_text(vlans_)}};
  }

  void configure(const Json &value, const std::string &place) override {
    ObjectReader reader(value, place);
    auto bytes = from_hex(reader.text("igmp_proxy"));
    if (!bytes || bytes->size() != kRecord) {
      refuse(reader.place_of("igmp_proxy"), reader.get("igmp_proxy"), "24 bytes in hex");
    }
    std::copy(bytes->begin(), bytes->end(), proxy_.begin());
    vlans_ = read_ids(reader, "vlans");
    reader.finish();
  }

  void restore_factory() override {
    proxy_ = kFactory;
    vlans_.reset();
  }

  void describe_configuration(Report &report) const override {
    report.section("IGMP proxy");
    for (size_t i = 0; i < std::size(kFields); ++i) {
      report.row({std::string(kFields[i]), fmt::to_string(Request(proxy_).u32(4 * i))});
    }
    report.section("Multicast VLANs");
    for (std::string &line : ids_to_cells(vlans_, 80)) report.row({std::move(line)});
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status remove(const std::vector<IdRange> &ranges) {
    auto vlans = known_ids(ranges, vlans_);
    if (!vlans) return Status::kNotFound;
    vlans_ &= ~*vlans;
    return Status::kOk;
  }

  Status proxy(Reply &reply) {
    reply.bytes(0, proxy_);
    return Status::kOk;
  }

  Status set_proxy(const Request &request, Reply & /*reply*/) {
    auto bytes = request.bytes(0, kRecord);
    std::copy(bytes.begin(), bytes.end(), proxy_.begin());
    hardware_.events().record(Level::kNotice, kMainModule, "IGMP proxy set");
    return Status::kOk;
  }

  Status dump(Reply &reply) {
    auto ranges = ranges_of(vlans_);
    reply.bytes(0, proxy_);
    reply.u32(kRecord, static_cast<uint32_t>(ranges.size()));
    size_t at = kRecord + 4;
    for (auto [first, last] : ranges) {
      reply.u16(at, first);
      reply.u16(at + 2, last);
      at += kVlanElement;
    }
    return Status::kOk;
  }

  Hardware &hardware_;
  Proxy proxy_ = kFactory;
  IdSet vlans_;
};

}  // namespace

std::unique_ptr<Family> make_switch_multicast(Hardware &hardware) {
  return std::make_unique<SwitchMulticast>(hardware);
}

}  // namespace olt::box
