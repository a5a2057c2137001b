#include "box/watch/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <sstream>

#include "base/bad_input.h"
#include "base/text.h"

namespace olt::box {

namespace {

using Action = Answer::Action;

constexpr size_t kMaxFaults = 256;
constexpr uint64_t kMaxDelayMs = 600'000;
constexpr Action kActions[] = {Action::kSend, Action::kWithhold, Action::kDisconnect};

std::optional<Action> action_of(std::string_view name) {
  for (Action action : kActions) {
    if (action_name(action) == name) return action;
  }
  return std::nullopt;
}

/// A decimal or 0x-hex number as a number, anything else as text.
Json value_of(std::string_view word) {
  bool hex = word.starts_with("0x");
  std::string_view digits = hex ? word.substr(2) : word;
  uint64_t number = 0;
  auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, hex ? 16 : 10);
  if (error == std::errc() && end == digits.data() + digits.size()) return number;
  return printable_ascii(word);
}

Json fault_from_words(std::string_view text) {
  Json fault = Json::object();
  std::istringstream words{std::string(text)};
  for (std::string word; words >> word;) {
    size_t equals = word.find('=');
    bool is_action = equals == std::string::npos && action_of(word);
    if (equals == std::string::npos && !is_action) {
      throw BadInput(fmt::format(R"("{}" is not understood; expected KEY=VALUE, silence or drop)",
                                 printable_ascii(word)));
    }
    std::string key = is_action ? "action" : printable_ascii(word.substr(0, equals));
    if (fault.contains(key)) throw BadInput(key + " is given twice; expected once");
    fault[key] = is_action ? Json(word) : value_of(std::string_view(word).substr(equals + 1));
  }
  return fault;
}

std::optional<uint32_t> read_module(ObjectReader &reader) {
  const Json *member = reader.find("module");
  if (member == nullptr || *member == "any" || *member == 0) return std::nullopt;
  if (!member->is_number_unsigned() || *member > 255) {
    refuse(reader.place_of("module"), *member, "a module from 1 to 255, or 0 or \"any\"");
  }
  return member->get<uint32_t>();
}

Action read_action(ObjectReader &reader) {
  const Json *member = reader.find("action");
  if (member == nullptr) return Action::kSend;
  auto action = member->is_string() ? action_of(member->get<std::string>()) : std::nullopt;
  if (!action) refuse(reader.place_of("action"), *member, "status, silence or drop");
  return *action;
}

Fault read_fault(ObjectReader &reader) {
  Fault fault;
  fault.module = read_module(reader);
  fault.type = static_cast<uint32_t>(reader.number("type", kAnyU32));
  fault.status = static_cast<uint16_t>(reader.number("status", kAnyU16, 0));
  fault.delay_ms = static_cast<uint32_t>(reader.number("delay_ms", {0, kMaxDelayMs}, 0));
  fault.action = read_action(reader);
  fault.from = reader.number("from", {1, UINT32_MAX}, 1);
  fault.count = reader.number("count", kAnyU32, 0);
  return fault;
}

void check_effect(const Fault &fault, const std::string &place) {
  auto complain = [&place](std::string_view reason) {
    throw BadInput(fmt::format("{}: {}", place.empty() ? "/" : place, reason));
  };
  bool sends = fault.action == Action::kSend;
  if (sends && fault.status == 0 && fault.delay_ms == 0) {
    complain("has no effect; expected a status, a delay_ms, or the action silence or drop");
  }
  if (!sends && fault.status != 0) {
    complain("has a status that is never sent; expected it without silence and drop");
  }
  if (fault.action == Action::kWithhold && fault.delay_ms != 0) {
    complain("delays an answer that is never sent; expected delay_ms without silence");
  }
}

Json fault_to_json(const Fault &fault) {
  return {{"id", fault.id},
          {"module", fault.module.value_or(0)},
          {"type", fault.type},
          {"status", fault.status},
          {"delay_ms", fault.delay_ms},
          {"action", action_name(fault.action)},
          {"from", fault.from},
          {"count", fault.count},
          {"seen", fault.seen},
          {"applied", fault.applied}};
}

}  // namespace

std::string_view action_name(Action action) {
  switch (action) {
    case Action::kSend:
      return "status";
    case Action::kWithhold:
      return "silence";
    case Action::kDisconnect:
      return "drop";
  }
  return "";
}

Json fault_from_text(std::string_view text) {
  try {
    Json fault = fault_from_words(text);
    FaultTable().add(fault, "");
    return fault;
  } catch (const BadInput &error) {
    throw BadInput(fmt::format(R"(fault "{}": {})", printable_ascii(text), error.what()));
  }
}

uint32_t FaultTable::add(const Json &fault, const std::string &place) {
  ObjectReader reader(fault, place);
  Fault read = read_fault(reader);
  reader.finish();
  check_effect(read, place);
  if (faults_.size() >= kMaxFaults) {
    throw BadInput(
        fmt::format("{} faults are armed already; expected one to be cleared first", kMaxFaults));
  }
  read.id = ++last_id_;
  faults_.push_back(read);
  return read.id;
}

bool FaultTable::clear(uint32_t id) {
  return std::erase_if(faults_, [id](const Fault &fault) { return fault.id == id; }) > 0;
}

size_t FaultTable::clear_all() {
  size_t count = faults_.size();
  faults_.clear();
  return count;
}

const Fault *FaultTable::apply(uint32_t module, uint32_t type) {
  Fault *due_fault = nullptr;
  for (Fault &fault : faults_) {
    if (fault.type != type || fault.module.value_or(module) != module) continue;
    ++fault.seen;
    bool due =
        fault.seen >= fault.from && (fault.count == 0 || fault.seen - fault.from < fault.count);
    if (due && due_fault == nullptr) due_fault = &fault;
  }
  if (due_fault != nullptr) ++due_fault->applied;
  return due_fault;
}

Json FaultTable::list() const {
  Json list = Json::array();
  for (const Fault &fault : faults_) list.push_back(fault_to_json(fault));
  return list;
}

Json FaultTable::to_json() const {
  return {{"last_id", last_id_}, {"armed", list()}};
}

void FaultTable::from_json(const Json &value, const std::string &place) {
  ObjectReader reader(value, place);
  last_id_ = static_cast<uint32_t>(reader.number("last_id", kAnyU32));
  faults_.clear();
  for_each_element(reader.get("armed"), reader.place_of("armed"),
                   [this](const Json &element, const std::string &at) {
                     ObjectReader fault_reader(element, at);
                     Fault fault = read_fault(fault_reader);
                     fault.id = static_cast<uint32_t>(fault_reader.number("id", {1, last_id_}));
                     fault.seen = fault_reader.number("seen", kAnyU64);
                     fault.applied = fault_reader.number("applied", kAnyU64);
                     fault_reader.finish();
                     faults_.push_back(fault);
                   });
  reader.finish();
}

}  // namespace olt::box
