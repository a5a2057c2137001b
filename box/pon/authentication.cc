// Authentication of ONUs: modes and allow lists of the PON interfaces, and their block lists.

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "base/clock.h"
#include "base/mac.h"
#include "base/text.h"
#include "box/message/id_set.h"
#include "box/pon/families.h"
#include "box/pon/onu_listing.h"

namespace olt::box {

namespace {

/// The keys of the lists in state files.
constexpr std::string_view kListKeys[] = {"mac", "loid", "mac_loid"};

const char *access_text(Access access) {
  switch (access) {
    case Access::kAllowed:
      return "accepted";
    case Access::kNotListed:
      return "refused: not listed";
    case Access::kWrongPassword:
      break;
  }
  return "refused: wrong password";
}

class PonAuthentication final : public Family {
 public:
  PonAuthentication(Hardware &hardware, OnuState &state, PonAdmission &admission)
      : hardware_(hardware), state_(state), admission_(admission) {}

  std::string_view name() const override { return "pon-authentication"; }

  std::vector<Message> messages() override {
    return {
        interface_listing(hardware_, state_, 37, "blocked-onus", "blocklist",
                          std::bind_front(&PonAuthentication::list_blocked, this)),
        entries_message(41, "unblock-onus", std::bind_front(&PonAuthentication::unblock, this)),
        list_message(108, "allow-mac-loids", AuthMode::kMacAndLoid, &AllowList::add),
        list_message(109, "disallow-mac-loids", AuthMode::kMacAndLoid, &AllowList::remove),
        list_message(110, "allow-loids", AuthMode::kLoid, &AllowList::add),
        list_message(111, "disallow-loids", AuthMode::kLoid, &AllowList::remove),
        list_message(112, "allow-macs", AuthMode::kMac, &AllowList::add),
        list_message(113, "disallow-macs", AuthMode::kMac, &AllowList::remove),
        {kMainModule, 114, "set-auth-mode", exactly(sizeof(PonInterface)),
         on(this, &PonAuthentication::set_mode)},
        interface_listing(hardware_, state_, 115, "auth-lists", "authmode",
                          std::bind_front(&PonAuthentication::list_access, this)),
        {kMainModule, 116, "auth-mode", exactly(sizeof(PonInterface)),
         on(this, &PonAuthentication::mode)},
    };
  }

  void configuration(Archive &archive) override {
    if (archive.is_reading()) admission_.clear();
    archive.list(
        "interfaces", interfaces_count(),
        [&] {
          for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
            if (admission_.of(interface).is_factory()) continue;
            archive.element([&] {
              describe_interface(archive, interface);
              describe_access(archive, admission_.of(interface));
            });
          }
        },
        [&] {
          uint32_t interface = 0;
          describe_interface(archive, interface);
          describe_access(archive, admission_.of(interface));
        });
    if (archive.is_reading()) join_all();
  }

  void restore_factory() override {
    admission_.clear();
    join_all();
  }

  /// ONUs with the same standing are written together: usually all of an interface.
  void running(Archive &archive) override {
    archive.list(
        "onus", state_.onus.size(),
        [&] {
          for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
            for (auto [standing, numbers] : groups_of(interface)) {
              archive.element([&, standing = standing, numbers = numbers]() mutable {
                describe_group(archive, interface, numbers, standing);
              });
            }
          }
        },
        [&] {
          uint32_t interface = 0;
          IdSet numbers;
          Standing standing;
          describe_group(archive, interface, numbers, standing);
          resume_group(archive, interface, numbers, standing);
        });
  }

  void reboot() override {
    for (Onu &onu : state_.onus) {
      onu.admit(hardware_.now());
      onu.restart(hardware_.now());
    }
  }

  void describe_configuration(Report &report) const override {
    report.section("Authentication of ONUs",
                   {"PON interface", "Mode", "MAC addresses", "LOIDs", "MAC addresses with LOIDs"});
    for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
      const PonAccess &access = admission_.of(interface);
      std::vector<std::string> cells = {pon_name(interface), auth_mode_name(access.mode)};
      for (const AllowList &list : access.lists) cells.push_back(fmt::to_string(list.size()));
      report.row(std::move(cells));
    }
    for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
      for (const AllowList &list : admission_.of(interface).lists) {
        if (!list.empty()) add_list(report, interface, list);
      }
    }
  }

  void describe_running(Report &report) const override {
    report.section("ONUs", {"PON interface", "Authentication", "Up", "Away", "Blocked"});
    for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
      size_t up = count(interface, Presence::kUp);
      size_t away = count(interface, Presence::kAway);
      report.row({pon_name(interface), auth_mode_name(admission_.of(interface).mode),
                  fmt::to_string(up), fmt::to_string(away),
                  fmt::to_string(count(interface, Presence::kBlocked))});
    }
  }

  size_t footprint() const override {
    return sizeof *this + state_.onus.capacity() * sizeof(Onu) + admission_.footprint();
  }

 private:
  using Entries = std::vector<AuthEntry>;
  using EntriesAction = std::function<Status(uint32_t interface, const Entries &entries)>;

  uint32_t interfaces_count() const { return state_.topology.pon_interfaces; }

  size_t count(uint32_t interface, Presence presence) const {
    auto onus = state_.of_interface(interface);
    TimePoint now = hardware_.now();
    return static_cast<size_t>(std::count_if(
        onus.begin(), onus.end(), [&](const Onu &onu) { return onu.presence(now) == presence; }));
  }

  void join_all() {
    TimePoint now = hardware_.now();
    for (uint32_t interface = 1; interface <= interfaces_count(); ++interface) {
      admission_.join_all(interface, now);
    }
  }

  void record(uint32_t interface, std::string_view what) {
    hardware_.events().record(
        Level::kNotice, kMainModule,
        fmt::format("PON interface {}: {}; up {}, blocked {}", pon_name(interface), what,
                    count(interface, Presence::kUp), count(interface, Presence::kBlocked)));
  }

  /// A message with entries after the interface.
  Message entries_message(uint32_t type, std::string_view name, EntriesAction act) {
    constexpr size_t kHead = sizeof(PonInterface);
    Lengths lengths = {kHead, kHead + sizeof(AuthEntry) * kMaxAllowed};
    auto handler = [this, act = std::move(act)](const Request &request, Reply &) {
      Entries entries = request.records<AuthEntry>(kHead);
      auto head = request.record<PonInterface>();
      if (!state_.has_interface(head.slot, head.interface)) return Status::kNotFound;
      return act(head.interface, entries);
    };
    // The first password of entries that come without the interface is the nearest.
    constexpr ByteRange kSecret = from_byte(offsetof(AuthEntry, password));
    return {kMainModule, type, name, lengths, handler, {.request = kSecret}};
  }

  Message list_message(uint32_t type, std::string_view name, AuthMode mode,
                       Status (AllowList::*change)(const Entries &)) {
    return entries_message(type, name, [=, this](uint32_t interface, const Entries &entries) {
      Status status = (admission_.of(interface).list(mode).*change)(entries);
      if (status != Status::kOk) return status;
      size_t blocked = admission_.block_unlisted(interface, hardware_.now());
      if (blocked > 0) record(interface, fmt::format("ONUs blocked: {}", blocked));
      return status;
    });
  }

  Status unblock(uint32_t interface, const Entries &entries) {
    std::vector<Onu *> unblocked;
    for (const AuthEntry &entry : entries) {
      Onu *onu = state_.find(interface, entry.mac);
      if (onu == nullptr || onu->admitted()) return Status::kNotFound;
      unblocked.push_back(onu);
    }
    for (Onu *onu : unblocked) admission_.rejoin(*onu, hardware_.now());
    record(interface, fmt::format("ONUs deleted from the block list: {}", unblocked.size()));
    return Status::kOk;
  }

  Status set_mode(const Request &request) {
    auto asked = request.record<PonInterface>();
    if (!state_.has_interface(asked.slot, asked.interface)) return Status::kNotFound;
    if (asked.auth_mode > kLastAuthMode) return Status::kBadValue;
    auto mode = static_cast<AuthMode>(asked.auth_mode);
    admission_.of(asked.interface).mode = mode;
    admission_.join_all(asked.interface, hardware_.now());
    record(asked.interface, fmt::format("authentication {}", auth_mode_name(mode)));
    return Status::kOk;
  }

  Status mode(const Request &request, Reply &reply) {
    auto asked = request.record<PonInterface>();
    if (!state_.has_interface(asked.slot, asked.interface)) return Status::kNotFound;
    reply.record(PonInterface{
        .slot = kPonSlot,
        .interface = asked.interface,
        .auth_mode = static_cast<uint32_t>(admission_.of(asked.interface).mode),
    });
    return Status::kOk;
  }

  Report list_blocked(uint32_t interface) const {
    Report report("Block list of PON interface " + pon_name(interface));
    size_t blocked = count(interface, Presence::kBlocked);
    report.section(counted(blocked, "ONU"),
                   {"ONU", "MAC address", "LOID", "Blocked since", "If it tried now"});
    for (const Onu &onu : state_.of_interface(interface)) {
      if (onu.admitted()) continue;
      report.row({to_text(onu.place()), mac_text(onu.mac()), onu.loid(), utc_seconds(onu.from()),
                  access_text(admission_.check(onu))});
    }
    return report;
  }

  Report list_access(uint32_t interface) const {
    const PonAccess &access = admission_.of(interface);
    Report report("Authentication on PON interface " + pon_name(interface));
    report.section("Mode");
    report.row({fmt::to_string(static_cast<uint32_t>(access.mode)), auth_mode_name(access.mode)});
    for (const AllowList &list : access.lists) add_list(report, interface, list);
    return report;
  }

  static void add_list(Report &report, uint32_t interface, const AllowList &list) {
    bool mac = list.mode() != AuthMode::kLoid;
    bool loid = list.mode() != AuthMode::kMac;
    std::vector<std::string> columns;
    if (mac) columns.emplace_back("MAC address");
    if (loid) columns.insert(columns.end(), {"LOID", "Password"});
    report.section(fmt::format("Allowed {} on {}: {}", auth_mode_name(list.mode()),
                               pon_name(interface), list.size()),
                   columns);
    for (const AuthEntry &entry : list.entries()) {
      std::vector<std::string> cells;
      if (mac) cells.push_back(mac_text(entry.mac));
      if (loid) cells.push_back(printable(text_of(entry.loid)));
      if (loid) cells.emplace_back(entry.password[0] == '\0' ? "any" : "**");
      report.row(std::move(cells));
    }
  }

  void describe_interface(Archive &archive, uint32_t &interface) const {
    archive.number("interface", interface, {1, interfaces_count()});
  }

  static void describe_access(Archive &archive, PonAccess &access) {
    auto mode = static_cast<uint32_t>(access.mode);
    archive.number("mode", mode, {0, kLastAuthMode});
    access.mode = static_cast<AuthMode>(mode);
    for (size_t i = 0; i < access.lists.size(); ++i) {
      AllowList &list = access.lists[i];
      archive.list(
          kListKeys[i], kMaxAllowed,
          [&] {
            for (AuthEntry entry : list.entries()) {
              archive.element([&] { describe_entry(archive, entry); });
            }
          },
          [&] {
            AuthEntry entry{};
            describe_entry(archive, entry);
            if (list.add({entry}) != Status::kOk) {
              archive.refuse("mac", "an entry that the list can hold");
            }
          });
    }
  }

  static void describe_entry(Archive &archive, AuthEntry &entry) {
    archive.bytes("mac", entry.mac);
    describe_text(archive, "loid", entry.loid);
    describe_text(archive, "password", entry.password);
  }

  template <size_t size>
  static void describe_text(Archive &archive, std::string_view key, char (&field)[size]) {
    std::string text = text_of(field);
    archive.text(key, text, size);
    set_text(field, text);
  }

  using Standing = std::pair<bool, TimePoint>;  ///< admitted, from when

  std::map<Standing, IdSet> groups_of(uint32_t interface) const {
    std::map<Standing, IdSet> groups;
    for (const Onu &onu : state_.of_interface(interface)) {
      groups[{onu.admitted(), onu.from()}].set(onu.place().onu);
    }
    return groups;
  }

  void describe_group(Archive &archive, uint32_t &interface, IdSet &numbers,
                      Standing &standing) const {
    describe_interface(archive, interface);
    describe_ids(archive, "onus", numbers);
    archive.flag("admitted", standing.first);
    archive.moment("from", standing.second);
  }

  void resume_group(Archive &archive, uint32_t interface, const IdSet &numbers,
                    const Standing &standing) {
    for (IdRange range : ranges_of(numbers)) {
      for (uint32_t number = range.first; number <= range.last; ++number) {
        Onu *onu = state_.find(interface, number);
        if (onu == nullptr) archive.refuse("onus", "ONUs that the box has");
        onu->block(standing.second);
        if (standing.first) onu->admit(standing.second);
      }
    }
  }

  Hardware &hardware_;
  OnuState &state_;
  PonAdmission &admission_;
};

}  // namespace

std::unique_ptr<Family> make_pon_authentication(Hardware &hardware, OnuState &state,
                                                PonAdmission &admission) {
  return std::make_unique<PonAuthentication>(hardware, state, admission);
}

}  // namespace olt::box
