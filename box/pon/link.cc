// Global parameters of the PON, settings of single ONUs and of their logical links, and actions on
// ONUs.

#include <fmt/format.h>

#include <algorithm>

#include "box/pon/families.h"

namespace olt::box {

namespace {

using GlobalWord = uint32_t GlobalParameters::*;

class PonLink final : public OnuFamily {
 public:
  PonLink(Hardware &hardware, OnuState &state, PonAdmission &admission)
      : OnuFamily("pon-link", state,
                  {state.records.feature, state.records.description, state.records.link_dba,
                   state.records.user_traffic}),
        hardware_(hardware),
        admission_(admission) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        read_message(state(), 38, "onu-feature", records.feature),
        set_message(state(), 42, "set-onu-feature", records.feature),
        onu_message(43, "clear-onu", &PonLink::clear),
        set_message(state(), 44, "describe-onu", records.description),
        onu_message(45, "undescribe-onu", &PonLink::undescribe),
        part_message(state(), 46, "set-user-traffic", Scope::kOnu, exactly(0),
                     on(this, &PonLink::set_traffic)),
        set_message(state(), 49, "force-onu-feature", records.feature),
        part_message(state(), 54, "set-link-dba", Scope::kOnu, exactly(records.link_dba.size()),
                     on(this, &PonLink::grant)),
        global_message(76, "set-peer-to-peer", {&GlobalParameters::p2p_function}),
        global_message(77, "set-pon-port", {&GlobalParameters::ponport_function}),
        global_message(78, "set-encryption",
                       {&GlobalParameters::link_security_a, &GlobalParameters::link_security_b}),
        {kMainModule, 79, "global-parameters", exactly(sizeof(GlobalParameters)),
         on(this, &PonLink::exchange_global)},
        onu_message(107, "reboot-onu", &PonLink::reboot_onu),
        onu_message(168, "reboot-onu", &PonLink::reboot_onu),
        onu_message(169, "default-onu", &PonLink::restore_onu),
    };
  }

  void configuration(Archive &archive) override {
    OnuFamily::configuration(archive);
    archive.bytes("global", bytes_of(global_));
  }

  void restore_factory() override {
    OnuFamily::restore_factory();
    global_ = {};
  }

  void describe_configuration(Report &report) const override {
    report.section("Global parameters of the PON");
    for (size_t i = 0; i < std::size(global_.reserved_00); ++i) {
      report.row({fmt::format("Word {}", i), fmt::to_string(global_.reserved_00[i])});
    }
    report.row({"Peer to peer", fmt::to_string(global_.p2p_function)});
    report.row({"Encryption, first", fmt::to_string(global_.link_security_a)});
    report.row({"Encryption, second", fmt::to_string(global_.link_security_b)});
    report.row({"PON port", fmt::to_string(global_.ponport_function)});
    OnuFamily::describe_configuration(report);
  }

 private:
  Message onu_message(uint32_t type, std::string_view name, Status (PonLink::*act)(Onu &)) {
    return part_message(state(), type, name, Scope::kOnu, exactly(0),
                        [this, act](const OnuPart &place, const Request &, Reply &) {
                          return (this->*act)(*state().find(place));
                        });
  }

  /// A message that sets these words of the global parameters and reads no others.
  Message global_message(uint32_t type, std::string_view name, std::vector<GlobalWord> words) {
    auto handler = [this, words = std::move(words)](const Request &request, Reply &) {
      auto record = request.record<GlobalParameters>();
      for (GlobalWord word : words) global_.*word = record.*word;
      return Status::kOk;
    };
    return {kMainModule, type, name, exactly(sizeof(GlobalParameters)), handler};
  }

  Status exchange_global(const Request &request, Reply &reply) {
    global_ = request.record<GlobalParameters>();
    reply.record(global_);
    return Status::kOk;
  }

  Status set_traffic(const OnuPart &onu, const Request &request) {
    auto target = request.record<OntTarget>();
    state().records.user_traffic.set(onu, bytes_of(target.user_traffic));
    return Status::kOk;
  }

  Status grant(const OnuPart &onu, const Request &request, Reply &reply) {
    auto record = request.record<LinkDba>(sizeof(OntTarget));
    for (uint32_t &bandwidth : record.granted) bandwidth = std::min(bandwidth, kMaxBandwidth);
    state().records.link_dba.set(onu, bytes_of(record));
    reply.record(record);
    return Status::kOk;
  }

  void record(const Onu &onu, std::string_view what) {
    hardware_.events().record(Level::kNotice, kMainModule,
                              fmt::format("ONU {}: {}", to_text(onu.place()), what));
  }

  Status clear(Onu &onu) {
    state().forget(onu.place());
    admission_.rejoin(onu, hardware_.now());
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
  PonAdmission &admission_;
  GlobalParameters global_ = {};
};

}  // namespace

std::unique_ptr<Family> make_pon_link(Hardware &hardware, OnuState &state,
                                      PonAdmission &admission) {
  return std::make_unique<PonLink>(hardware, state, admission);
}

}  // namespace olt::box
