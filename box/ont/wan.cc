// The WAN connections of ONTs, and the configuration actions on them.

#include <fmt/format.h>

#include "box/ont/families.h"
#include "box/pon/onu_listing.h"

namespace olt::box {

namespace {

enum Operation : uint32_t { kAdd = 1, kChange = 2, kDelete = 3 };
enum Action : uint32_t { kSave = 1, kRestoreDefaults = 2, kRestart = 3 };

class OntWan final : public OnuFamily {
 public:
  OntWan(Hardware &hardware, OnuState &shared)
      : OnuFamily("ont-wan", shared,
                  {shared.records.wan_connection, shared.records.configuration_action}),
        hardware_(hardware) {}

  std::vector<Message> messages() override {
    Message change = part_message(state(), 145, "wan-connection", Scope::kOnu,
                                  exactly(sizeof(WanConnection)), on(this, &OntWan::change));
    change.secret.request = from_byte(sizeof(OntTarget));
    return {
        change,
        listing_message(hardware_, state(), 146, "wan-connections", Scope::kOnu, "wan",
                        "WAN connections of ONU", on(this, &OntWan::list)),
        part_message(state(), 147, "ont-configuration", Scope::kOnu, exactly(sizeof(uint32_t)),
                     on(this, &OntWan::start_action)),
    };
  }

 private:
  Status change(const OnuPart &onu, const Request &request) {
    RecordTable &connections = state().records.wan_connection;
    auto connection = request.record<WanConnection>(sizeof(OntTarget));
    OnuPart place = {onu.interface, onu.onu, connection.number};
    if (!state().has(Scope::kWanConnection, place)) return Status::kBadValue;
    bool exists = connections.kept().contains(place);
    switch (connection.operation) {
      case kAdd:
        if (exists) return Status::kExists;
        break;
      case kChange:
      case kDelete:
        if (!exists) return Status::kNotFound;
        break;
      default:
        return Status::kBadValue;
    }
    if (connection.operation == kDelete) {
      connections.erase(place);
    } else {
      connections.set(place, bytes_of(connection));
    }
    return Status::kOk;
  }

  Status list(const OnuPart &onu, Report &report) const {
    for (const auto &[place, record] : state().records.wan_connection.kept_of(onu)) {
      report.section(fmt::format("Connection {}", place.part));
      report.dump(record);
    }
    return Status::kOk;
  }

  Status start_action(const OnuPart &place, const Request &request) {
    Onu &onu = *state().find(place);
    uint32_t action = request.word(sizeof(OntTarget));
    bool needs_onu = action >= kSave && action <= kRestart;
    if (needs_onu && !onu.up(hardware_.now())) return Status::kOffline;
    if (action == kRestoreDefaults) state().forget_services(place);
    if (action == kRestoreDefaults || action == kRestart) {
      onu.restart(hardware_.now() + hardware_.topology().onu_restart);
    }
    state().records.configuration_action.set(place, bytes_of(action));
    hardware_.events().record(
        Level::kNotice, kMainModule,
        fmt::format("ONU {}: configuration action {}", to_text(place), action));
    return Status::kOk;
  }

  Hardware &hardware_;
};

}  // namespace

std::unique_ptr<Family> make_ont_wan(Hardware &hardware, OnuState &state) {
  return std::make_unique<OntWan>(hardware, state);
}

}  // namespace olt::box
