// The voice service of ONTs: SIP settings and WAN interface of each ONU; switch, user account and
// fax mode of each line.

#include <fmt/format.h>

#include <algorithm>

#include "box/ont/families.h"
#include "box/pon/onu_listing.h"

namespace olt::box {

namespace {

constexpr std::string_view kTitle = "Voice service of ONU";

/// Whether a user account was set.
bool has_account(const OnuRecords &records, const OnuPart &line) {
  return records.user_account.kept().contains(line);
}

class OntVoice final : public OnuFamily {
 public:
  OntVoice(Hardware &hardware, OnuState &shared)
      : OnuFamily("ont-voice", shared,
                  {shared.records.sip, shared.records.voice_interface, shared.records.line_status,
                   shared.records.user_account, shared.records.fax}),
        hardware_(hardware) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        listing(134, "voice-info", "voice", &OntVoice::describe_voice),
        read_message(state(), 135, "voice-account", records.user_account),
        set_message(state(), 136, "set-voice-account", records.user_account),
        listing_message(hardware_, state(), 137, "voice-lines", Scope::kOnu, "voiceline", kTitle,
                        on(this, &OntVoice::list_lines)),
        set_message(state(), 138, "set-voice-line", records.line_status),
        listing(139, "fax-modes", "fax", &OntVoice::describe_fax),
        listing(140, "sip-config", "sip", &OntVoice::describe_sip),
        set_message(state(), 141, "set-fax-mode", records.fax),
        set_message(state(), 142, "set-sip-config", records.sip),
        part_message(state(), 143, "bind-voice", Scope::kOnu, exactly(sizeof(InterfaceName)),
                     on(this, &OntVoice::bind)),
        listing(144, "voice-binding", "binding", &OntVoice::describe_interface),
    };
  }

 private:
  using Describe = void (OntVoice::*)(const OnuPart &, Report &) const;

  /// A message that lists records of an ONU.
  Message listing(uint32_t type, std::string_view message, std::string_view kind,
                  Describe describe) {
    return listing_message(hardware_, state(), type, message, Scope::kOnu, kind, kTitle,
                           [this, describe](const OnuPart &onu, Report &report) {
                             (this->*describe)(onu, report);
                             return Status::kOk;
                           });
  }

  /// Bytes after the zero are undefined, so they are not kept.
  Status bind(const OnuPart &onu, const Request &request) {
    auto field = request.record<InterfaceName>(sizeof(OntTarget));
    auto name = terminated_text_of(field.name);
    if (!name) return Status::kBadValue;
    set_text(field.name, *name);
    state().records.voice_interface.set(onu, bytes_of(field));
    return Status::kOk;
  }

  Status list_lines(const OnuPart &onu, Report &report) const {
    if (!state().find(onu)->up(hardware_.now())) return Status::kOffline;
    describe_lines(onu, report);
    return Status::kOk;
  }

  void describe_voice(const OnuPart &onu, Report &report) const {
    describe_interface(onu, report);
    describe_sip(onu, report);
    describe_lines(onu, report);
    describe_fax(onu, report);
  }

  void describe_interface(const OnuPart &onu, Report &report) const {
    const RecordTable &table = state().records.voice_interface;
    std::string name = table.show(table.at(onu));
    report.section("Binding");
    report.row({"WAN interface", name.empty() ? "-" : name});
  }

  void describe_sip(const OnuPart &onu, Report &report) const {
    report.section("SIP settings");
    report.dump(state().records.sip.at(onu));
  }

  void describe_lines(const OnuPart &onu, Report &report) const {
    const OnuRecords &records = state().records;
    bool up = state().find(onu)->up(hardware_.now());
    report.section("Lines", {"Line", "Switch", "Account", "State"});
    for_each_line(onu, [&](const OnuPart &line) {
      report.row({fmt::to_string(line.part), records.line_status.show(records.line_status.at(line)),
                  has_account(records, line) ? "set" : "-",
                  line_state_text(line_state(records, line, up))});
    });
  }

  void describe_fax(const OnuPart &onu, Report &report) const {
    const RecordTable &fax = state().records.fax;
    report.section("Fax modes", {"Line", "First byte", "Second byte"});
    for_each_line(onu, [&](const OnuPart &line) {
      auto bytes = fax.at(line);
      report.row({fmt::to_string(line.part), fmt::to_string(bytes[0]), fmt::to_string(bytes[1])});
    });
  }

  template <typename Function>
  void for_each_line(const OnuPart &onu, Function function) const {
    for (uint32_t line = 1; line <= state().parts(Scope::kVoiceLine); ++line) {
      function(OnuPart{onu.interface, onu.onu, line});
    }
  }

  Hardware &hardware_;
};

}  // namespace

LineState line_state(const OnuRecords &records, const OnuPart &line, bool onu_is_up) {
  if (!onu_is_up) return LineState::kUnknown;
  auto status = records.line_status.at(line);
  if (std::all_of(status.begin(), status.end(), [](uint8_t byte) { return byte == 0; })) {
    return LineState::kOff;
  }
  return has_account(records, line) ? LineState::kRegistered : LineState::kUnregistered;
}

const char *line_state_text(LineState state) {
  switch (state) {
    case LineState::kOff:
      return "off";
    case LineState::kUnregistered:
      return "not registered";
    case LineState::kRegistered:
      return "registered";
    case LineState::kUnknown:
      break;
  }
  return "unknown";
}

std::unique_ptr<Family> make_ont_voice(Hardware &hardware, OnuState &state) {
  return std::make_unique<OntVoice>(hardware, state);
}

}  // namespace olt::box
