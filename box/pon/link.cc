// Links of the PON: the OLT's global parameters, and what is set for single ONUs or done to them.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/text.h"
#include "box/pon/families.h"

namespace olt::box {

namespace {

constexpr size_t kWord = 4;
constexpr size_t kGlobalRecord = 32;
constexpr size_t kPeerToPeerAt = 16;
constexpr size_t kEncryptionAt = 20;
constexpr size_t kPonPortAt = 28;
constexpr std::string_view kGlobalFields[] = {
    "Word 0",
    "Word 1",
    "Word 2",
    "Word 3",
    "Peer to peer",
    "Encryption, first",
    "Encryption, second",
    "PON port",
};
static_assert(std::size(kGlobalFields) * kWord == kGlobalRecord);

constexpr size_t kTrafficAt = 40;  ///< in the target itself

class PonLink final : public OnuFamily {
 public:
  PonLink(Hardware &hardware, const SharedOnus &state, SharedAdmission admission)
      : OnuFamily("pon-link", state,
                  {&state->records.feature, &state->records.description, &state->records.link_dba,
                   &state->records.user_traffic}),
        hardware_(hardware),
        admission_(std::move(admission)) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        read_message(state(), 38, "onu-feature", records.feature),
        set_message(state(), 42, "set-onu-feature", records.feature),
        onu_message(43, "clear-onu", &PonLink::clear),
        set_message(state(), 44, "describe-onu", records.description),
        onu_message(45, "undescribe-onu", &PonLink::undescribe),
        part_message(state(), 46, "set-user-traffic", Scope::kOnu, exactly(0),
                     [&records](const OnuPart &onu, const Request &request, Reply & /*reply*/) {
                       records.user_traffic.set(
                           onu, request.bytes(kTrafficAt, records.user_traffic.size()));
                       return Status::kOk;
                     }),
        set_message(state(), 49, "force-onu-feature", records.feature),
        part_message(state(), 54, "set-link-dba", Scope::kOnu, exactly(records.link_dba.size()),
                     [this](const OnuPart &onu, const Request &request, Reply &reply) {
                       return grant(onu, request, reply);
                     }),
        global_message(76, "set-peer-to-peer", {kPeerToPeerAt, kPeerToPeerAt + kWord}),
        global_message(77, "set-pon-port", {kPonPortAt, kPonPortAt + kWord}),
        global_message(78, "set-encryption", {kEncryptionAt, kEncryptionAt + 2 * kWord}),
        {kMainModule, 79, "global-parameters", exactly(kGlobalRecord),
         on(this, &PonLink::exchange_global)},
        onu_message(107, "reboot-onu", &PonLink::reboot_onu),
        onu_message(168, "reboot-onu", &PonLink::reboot_onu),
        onu_message(169, "default-onu", &PonLink::restore_onu),
    };
  }

  Json configuration() const override {
    Json value = OnuFamily::configuration();
    value["global"] = to_hex(global_);
    return value;
  }

  void restore_factory() override {
    OnuFamily::restore_factory();
    global_ = {};
  }

  void describe_configuration(Report &report) const override {
    report.section("Global parameters of the PON");
    for (size_t i = 0; i < std::size(kGlobalFields); ++i) {
      report.row({std::string(kGlobalFields[i]), fmt::to_string(Request(global_).u32(kWord * i))});
    }
    OnuFamily::describe_configuration(report);
  }

 private:
  void configure_rest(ObjectReader &reader) override {
    auto bytes = from_hex(reader.text("global"));
    if (!bytes || bytes->size() != kGlobalRecord) {
      refuse(reader.place_of("global"), reader.get("global"), "32 bytes in hex");
    }
    std::copy(bytes->begin(), bytes->end(), global_.begin());
  }

  Message onu_message(uint32_t type, std::string_view name, Status (PonLink::*act)(Onu &)) {
    return part_message(state(), type, name, Scope::kOnu, exactly(0),
                        [this, act](const OnuPart &place, const Request &, Reply &) {
                          return (this->*act)(*state().find(place));
                        });
  }

  /// A setter of the global parameters takes its own bytes alone.
  Message global_message(uint32_t type, std::string_view name, ByteRange own) {
    auto handler = [this, own](const Request &request, Reply & /*reply*/) {
      auto bytes = request.bytes(own.begin, own.end - own.begin);
      std::copy(bytes.begin(), bytes.end(), &global_[own.begin]);
      return Status::kOk;
    };
    return {kMainModule, type, name, exactly(kGlobalRecord), handler};
  }

  Status exchange_global(const Request &request, Reply &reply) {
    auto bytes = request.bytes(0, kGlobalRecord);
    std::copy(bytes.begin(), bytes.end(), global_.begin());
    reply.bytes(0, global_);
    return Status::kOk;
  }

  Status grant(const OnuPart &onu, const Request &request, Reply &reply) {
    RecordTable &table = state().records.link_dba;
    Reply granted;
    granted.bytes(0, request.bytes(kOntTarget, table.size()));
    for (size_t at : kGrantedAt) {
      granted.u32(at, std::min(request.u32(kOntTarget + at), kMostBandwidth));
    }
    std::vector<uint8_t> record = granted.take();
    table.set(onu, record);
    reply.bytes(0, record);
    return Status::kOk;
  }

  void record(const Onu &onu, std::string_view what) {
    hardware_.events().record(Level::kNotice, kMainModule,
                              fmt::format("ONU {}: {}", to_text(onu.place()), what));
  }

  Status clear(Onu &onu) {
    state().forget(onu.place());
    admission_->try_anew(onu, hardware_.now());
    record(onu, "cleared");
    return Status::kOk;
  }

  Status undescribe(Onu &onu) {
    state().records.description.erase(onu.place());
    return Status::kOk;
  }

  Status restart(Onu &onu, std::string_view what) {
    onu.restart(hardware_.now() + state().topology.onu_restart);
    record(onu, what);
    return Status::kOk;
  }

  Status reboot_onu(Onu &onu) {
    if (!onu.up(hardware_.now())) return Status::kOffline;
    return restart(onu, "rebooted");
  }

  Status restore_onu(Onu &onu) {
    if (!onu.up(hardware_.now())) return Status::kOffline;
    state().forget_services(onu.place());
    return restart(onu, "set back to its defaults");
  }

  Hardware &hardware_;
  SharedAdmission admission_;
  std::array<uint8_t, kGlobalRecord> global_ = {};
};

}  // namespace

std::unique_ptr<Family> make_pon_link(Hardware &hardware, const SharedOnus &state,
                                      SharedAdmission admission) {
  return std::make_unique<PonLink>(hardware, state, std::move(admission));
}

}  // namespace olt::box
