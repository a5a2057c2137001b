#include "box/watch/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <sstream>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/watch/message_types.h"

namespace olt::box {

namespace {

using Action = Answer::Action;

constexpr size_t kMaxFaults = 256;
constexpr size_t kMaxAction = 16;
constexpr uint64_t kMaxDelayMs = 600'000;
constexpr Action kActions[] = {Action::kSend, Action::kWithhold, Action::kDisconnect};

std::optional<Action> action_of(std::string_view name) {
  for (Action action : kActions) {
    if (action_name(action) == name) return action;
  }
  return std::nullopt;
}

/// The number that the word gives in decimal or 0x-hex.
std::optional<uint64_t> number_in(std::string_view word) {
  bool hex = word.starts_with("0x");
  std::string_view digits = hex ? word.substr(2) : word;
  uint64_t number = 0;
  auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, hex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

std::string fault_from_words(std::string_view text) {
  CborWriter fault;
  std::set<std::string> keys;
  std::istringstream words{std::string(text)};
  fault.begin_map();
  for (std::string word; words >> word;) {
    size_t equals = word.find('=');
    bool is_action = equals == std::string::npos && action_of(word);
    if (equals == std::string::npos && !is_action) {
      throw BadInput(fmt::format(R"("{}" is not understood; expected KEY=VALUE, silence or drop)",
                                 printable_ascii(word)));
    }
    std::string key = is_action ? "action" : printable_ascii(word.substr(0, equals));
    std::string value = is_action ? word : word.substr(equals + 1);
    if (!keys.insert(key).second) throw BadInput(key + " is given twice; expected once");
    fault.text(key);
    if (auto number = number_in(value)) {
      fault.number(*number);
    } else if (key == "type") {
      std::optional<uint32_t> type = message_type_of(value);
      if (!type) {
        throw BadInput(
            fmt::format(R"(type: is "{}"; expected a message type or an operation that sends)",
                        printable_ascii(value)));
      }
      fault.number(*type);
    } else {
      fault.text(printable_ascii(value));
    }
  }
  fault.end();
  return fault.take();
}

/// What arms a fault; all but the type may be left out.
void describe_order(Archive &archive, Fault &fault) {
  uint32_t module = fault.module.value_or(0);
  if (archive.has("module") && !archive.is("module", "any")) {
    archive.number("module", module, {0, 255});
  }
  if (module != 0) fault.module = module;
  archive.number("type", fault.type);
  if (archive.has("status")) archive.number("status", fault.status);
  if (archive.has("delay_ms")) archive.number("delay_ms", fault.delay_ms, {0, kMaxDelayMs});
  if (archive.has("action")) {
    std::string action(action_name(fault.action));
    archive.text("action", action, kMaxAction);
    auto known = action_of(action);
    if (!known) archive.refuse("action", "status, silence or drop");
    fault.action = *known;
  }
  if (archive.has("from")) archive.number("from", fault.from, {1, UINT32_MAX});
  if (archive.has("count")) archive.number("count", fault.count, {0, UINT32_MAX});
}

void check_effect(const Fault &fault) {
  bool sends = fault.action == Action::kSend;
  if (sends && fault.status == 0 && fault.delay_ms == 0) {
    throw BadInput(
        "the fault has no effect; expected a status, a delay_ms, or the action silence or drop");
  }
  if (!sends && fault.status != 0) {
    throw BadInput("the status is never sent; expected it without silence and drop");
  }
  if (fault.action == Action::kWithhold && fault.delay_ms != 0) {
    throw BadInput("the answer that is delayed is never sent; expected delay_ms without silence");
  }
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

std::string fault_from_text(std::string_view text) {
  try {
    std::string fault = fault_from_words(text);
    Archive archive(fault);
    Fault read = read_fault(archive);
    archive.finish();
    check_effect(read);
    return fault;
  } catch (const BadInput &error) {
    std::string_view line = error.what();
    if (line.starts_with('/')) line.remove_prefix(1);  // a word is no place in a document
    throw BadInput(fmt::format(R"(fault "{}": {})", printable_ascii(text), line));
  }
}

Fault read_fault(Archive &order) {
  Fault fault;
  describe_order(order, fault);
  return fault;
}

uint32_t FaultTable::arm(Fault fault) {
  check_effect(fault);
  if (faults_.size() >= kMaxFaults) {
    auto used_up = std::find_if(faults_.begin(), faults_.end(),
                                [](const Fault &old) { return old.is_used_up(); });
    if (used_up != faults_.end()) faults_.erase(used_up);
  }
  if (faults_.size() >= kMaxFaults) {
    throw BadInput(
        fmt::format("{} faults are armed already; expected one to be cleared first", kMaxFaults));
  }
  fault.id = ++last_id_;
  faults_.push_back(fault);
  return fault.id;
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

void FaultTable::describe_faults(Archive &archive) {
  archive.list("faults", faults_, kMaxFaults, [&](Fault &fault) {
    archive.number("id", fault.id, {1, last_id_});
    describe_order(archive, fault);
    archive.number("seen", fault.seen);
    archive.number("applied", fault.applied);
  });
}

void FaultTable::describe(Archive &archive) {
  archive.number("last_id", last_id_);
  describe_faults(archive);
}

}  // namespace olt::box
