#include "mock/mock.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iterator>
#include <tuple>
#include <utility>

#include "base/bad_input.h"
#include "catalog/catalog.h"

namespace olt::mock {

using catalog::Address;
using catalog::Operation;

namespace {

/// As liboltplatform does: callers read records of fixed size, and texts up to their zero, from
/// replies that may be shorter.
constexpr size_t kSmallestReply = 256;

const Operation &operation_named(const char *name) {
  std::string_view given = name == nullptr ? "" : name;
  const Operation *operation = catalog::find(given);
  if (operation == nullptr) {
    throw BadInput(
        fmt::format("there is no operation '{}'; expected one of oltmgmt.h", printable(given)));
  }
  if (!operation->address.sends()) {
    throw BadInput(
        fmt::format("{}: sends no request; expected an operation that does", operation->name));
  }
  return *operation;
}

/// Refuses an answer where there is no reply.
void require_reply(const Expectation &expectation) {
  if (expectation.operation->reply.part_count > 0) return;
  throw BadInput(fmt::format("{}: has no reply; expected no answer", expectation.operation->name));
}

Plan plan_of(const Expectation &expectation, uint32_t call) {
  for (uint32_t number : {call, OLT_MOCK_EVERY}) {
    auto found = expectation.plans.find(number);
    if (found != expectation.plans.end()) return found->second;
  }
  return {};
}

bool is_second(const Expectation &expectation, const Request &request) {
  return request.module != expectation.operation->address.module &&
         request.module == expectation.operation->address.second_module;
}

/// Whether the request is the expected one, whoever's turn it is.
bool fits(const Expectation &expectation, const Request &request) {
  return request.operation == expectation.operation &&
         is_second(expectation, request) == expectation.awaits_second &&
         differences(expectation.content, request.module, request.bytes).empty();
}

std::string times_expected(const Expectation &expectation) {
  auto [min, max] = std::tuple(expectation.min, expectation.max);
  if (min == max) return fmt::to_string(min);
  if (max == OLT_MOCK_ANY) return fmt::format("{} or more", min);
  return fmt::format("{} to {}", min, max);
}

void append_line(std::string &text, const std::string &line) {
  text += text.empty() ? line : '\n' + line;
}

}  // namespace

Mock &mock() {
  // Never destroyed: front ends may release blocks up to the very end of the process.
  static Mock &instance = *new Mock;
  return instance;
}

// Expectations.

Expectation *Mock::add(const Operation &operation, std::string text, Content content) {
  std::lock_guard guard(lock_);
  expectations_.push_back(std::make_shared<Expectation>(Expectation{
      .operation = &operation, .text = std::move(text), .content = std::move(content)}));
  return expectations_.back().get();
}

Expectation *Mock::expect(const char *name, const char *fields) {
  const Operation &operation = operation_named(name);
  std::string_view words = fields == nullptr ? "" : fields;
  return add(operation,
             fmt::format("{}{}{}", operation.name, words.empty() ? "" : " ", printable(words)),
             content_named(operation, Side::kRequest, words));
}

Expectation *Mock::expect_bytes(const char *name, ByteView request) {
  const Operation &operation = operation_named(name);
  return add(operation,
             fmt::format("{} with the bytes {}", operation.name,
                         request.empty() ? "none" : to_spaced_hex(request)),
             content_of_request(operation, request));
}

void Mock::answer(Expectation &expectation, const char *fields) {
  require_reply(expectation);
  const Operation &operation = *expectation.operation;
  Bytes reply = reply_with(operation,
                           content_named(operation, Side::kReply, fields == nullptr ? "" : fields));
  answer_bytes(expectation, reply);
}

void Mock::answer_bytes(Expectation &expectation, ByteView reply) {
  require_reply(expectation);
  if (reply.size() > UINT16_MAX) {
    throw BadInput(fmt::format("{}: a reply of {}; expected at most {}",
                               expectation.operation->name, counted(reply.size(), "byte"),
                               UINT16_MAX));
  }
  std::lock_guard guard(lock_);
  expectation.answers.emplace_back(reply.begin(), reply.end());
}

void Mock::answer_from_capture(Expectation &expectation, const char *path) {
  require_reply(expectation);
  std::vector<Bytes> replies =
      recorded_replies(path == nullptr ? "" : path, *expectation.operation);
  for (const Bytes &reply : replies) answer_bytes(expectation, reply);
}

void Mock::replay_capture(const char *path) {
  std::lock_guard guard(lock_);
  recording_.add(path == nullptr ? "" : path);
}

void Mock::set_times(Expectation &expectation, uint32_t min, uint32_t max) {
  if (max == 0 || min > max) {
    throw BadInput(
        fmt::format("{}: {} to {} times; expected a maximum of at least the minimum and 1",
                    expectation.operation->name, min, max));
  }
  std::lock_guard guard(lock_);
  expectation.min = min;
  expectation.max = max;
}

void Mock::set_any_order(Expectation &expectation) {
  std::lock_guard guard(lock_);
  expectation.is_in_order = false;
}

void Mock::plan_failure(Expectation &expectation, uint32_t call, int32_t result) {
  if (result == 0) {
    throw BadInput(fmt::format("{}: the result 0 is success; expected another one",
                               expectation.operation->name));
  }
  std::lock_guard guard(lock_);
  expectation.plans[call].result = result;
}

void Mock::plan_refusal(Expectation &expectation, uint32_t call, uint16_t status) {
  if (status == 0) {
    throw BadInput(fmt::format("{}: the status 0 is success; expected another one",
                               expectation.operation->name));
  }
  std::lock_guard guard(lock_);
  expectation.plans[call].status = status;
}

void Mock::hold(Expectation &expectation, uint32_t call) {
  std::lock_guard guard(lock_);
  expectation.plans[call].is_held = true;
}

bool Mock::wait_until_held(Expectation &expectation, uint32_t milliseconds) {
  std::unique_lock guard(lock_);
  return changed_.wait_for(guard, std::chrono::milliseconds(milliseconds),
                           [&expectation] { return expectation.held > 0; });
}

void Mock::release(Expectation &expectation) {
  std::lock_guard guard(lock_);
  expectation.is_released = true;
  changed_.notify_all();
}

void Mock::plan_failed_allocation(uint32_t allocation) {
  if (allocation == 0) {
    throw BadInput("there is no allocation 0; expected a number from 1");
  }
  std::lock_guard guard(lock_);
  allocations_ = 0;
  failing_allocation_ = allocation;
}

// Calls.

/// Those in order come first: the one whose turn it is, or one after it when all between them have
/// been met often enough.
std::shared_ptr<Expectation> Mock::find(const Request &request) {
  for (size_t i = turn_; i < expectations_.size(); ++i) {
    const Expectation &expectation = *expectations_[i];
    if (!expectation.is_in_order) continue;
    if (expectation.met < expectation.max && fits(expectation, request)) {
      turn_ = i;
      return expectations_[i];
    }
    if (expectation.met < expectation.min || expectation.awaits_second) break;
  }
  for (const auto &expectation : expectations_) {
    if (expectation->is_in_order || expectation->met == expectation->max) continue;
    if (fits(*expectation, request)) return expectation;
  }
  return nullptr;
}

Outcome Mock::exchange(const Request &request) {
  std::unique_lock guard(lock_);
  std::shared_ptr<Expectation> expectation = find(request);
  if (expectation == nullptr) {
    if (std::optional<Outcome> outcome = replay(request)) return *outcome;
    return {.result = OLT_MOCK_UNEXPECTED, .report = keep_report(unexpected(request))};
  }
  bool has_second = expectation->operation->address.second_module != Address::kNone;
  uint32_t call = expectation->met + 1;
  // The plan of a call is that of its first exchange.
  Plan plan = expectation->awaits_second ? Plan{} : plan_of(*expectation, call);
  bool succeeds = plan.result == 0 && plan.status == 0;
  bool is_done = expectation->awaits_second || !has_second || !succeeds;
  expectation->awaits_second = !is_done;
  if (is_done) ++expectation->met;
  if (plan.is_held && !expectation->is_released) {
    ++expectation->held;
    changed_.notify_all();
    changed_.wait(guard, [&expectation] { return expectation->is_released; });
    --expectation->held;
    bool is_over =
        std::find(expectations_.begin(), expectations_.end(), expectation) == expectations_.end();
    if (is_over) return {.result = OLT_MOCK_UNEXPECTED};
  }
  Outcome outcome{.result = plan.result,
                  .has_status = plan.result == 0 || plan.status != 0,
                  .status = plan.status};
  if (succeeds && request.wants_reply) {
    const std::vector<Bytes> &answers = expectation->answers;
    hand_out(request,
             answers.empty() ? reply_with(*expectation->operation, {})
                             : answers[std::min<size_t>(call, answers.size()) - 1],
             outcome);
  }
  return outcome;
}

/// What the captures answer, if they hold the request.
std::optional<Outcome> Mock::replay(const Request &request) {
  const Recorded *recorded = recording_.next(request.message_type, request.module, request.bytes);
  if (recorded == nullptr) return std::nullopt;
  Outcome outcome{
      .result = recorded->result, .has_status = recorded->result == 0, .status = recorded->status};
  bool has_reply = recorded->result == 0 && recorded->status == 0;
  if (has_reply && request.wants_reply) hand_out(request, recorded->reply, outcome);
  return outcome;
}

void Mock::hand_out(const Request &request, const Bytes &reply, Outcome &outcome) {
  Memory memory(std::calloc(1, std::max(reply.size() + 1, kSmallestReply)));
  if (memory == nullptr) throw std::bad_alloc();
  std::copy(reply.begin(), reply.end(), static_cast<uint8_t *>(memory.get()));
  outcome.reply = memory.get();
  outcome.reply_length = static_cast<uint16_t>(reply.size());
  outcome.reply_handle = ++last_handle_;
  const Operation *operation = request.operation;
  replies_[last_handle_] = {.memory = std::move(memory),
                            .operation = operation == nullptr
                                             ? fmt::format("message type {}", request.message_type)
                                             : operation->name,
                            .counts = operation == nullptr || !operation->keeps_reply};
}

const char *Mock::release_reply(uint32_t handle) {
  std::lock_guard guard(lock_);
  if (replies_.erase(handle) > 0) return nullptr;
  return keep_report(
      fmt::format("IPC_Free: no reply has the handle {}; expected that of a reply that was not "
                  "released before",
                  handle));
}

void *Mock::allocate(uint32_t size, const char *tag, int line) {
  std::lock_guard guard(lock_);
  if (failing_allocation_ != 0 && ++allocations_ == failing_allocation_) {
    failing_allocation_ = 0;
    return nullptr;
  }
  void *block = std::calloc(1, std::max<uint32_t>(size, 1));
  if (block != nullptr) {
    blocks_[block] = {.tag = tag == nullptr ? "?" : tag, .line = line, .size = size};
  }
  return block;
}

const char *Mock::release_block(void *block, const char *tag, int line) {
  if (block == nullptr) return nullptr;
  std::string by = tag == nullptr ? "?" : tag;
  std::lock_guard guard(lock_);
  auto found = blocks_.find(block);
  if (found == blocks_.end()) {
    return keep_report(
        fmt::format("___FREE: {}:{} releases what is no block; expected one from ___MALLOC that "
                    "was not released before",
                    by, line));
  }
  std::string owner = found->second.tag;
  blocks_.erase(found);
  std::free(block);
  if (by == owner) return nullptr;
  return keep_report(fmt::format("___FREE: {}:{} releases a block with the tag '{}'; expected '{}'",
                                 by, line, by, owner));
}

// Reports.

void Mock::set_reporter(const Reporter &reporter) {
  std::lock_guard guard(lock_);
  reporter_ = reporter;
}

Reporter Mock::reporter() {
  std::lock_guard guard(lock_);
  return reporter_;
}

const char *Mock::report(std::string text) {
  std::lock_guard guard(lock_);
  return keep_report(std::move(text));
}

const char *Mock::keep_report(std::string text) {
  ++reports_;
  return texts_.emplace_back(std::move(text)).c_str();
}

/// Why an expectation of the same operation does not take the request.
std::string Mock::why_not(const Expectation &expectation, const Request &request) const {
  std::vector<std::string> lines = differences(expectation.content, request.module, request.bytes);
  if (!lines.empty()) return fmt::format("\n  {}", fmt::join(lines, "\n  "));
  if (expectation.met == expectation.max) {
    return fmt::format("\n  already called {}", counted(expectation.met, "time"));
  }
  if (is_second(expectation, request) != expectation.awaits_second) {
    const Address &address = expectation.operation->address;
    return fmt::format("\n  module {} asked; expected module {}", request.module,
                       expectation.awaits_second ? address.second_module : address.module);
  }
  for (const auto &other : expectations_) {
    if (other.get() == &expectation) break;
    if (other->is_in_order && other->met < other->min) {
      return fmt::format("\n  out of order; expected after {}", other->text);
    }
  }
  return "\n  out of order; expected before calls that were made";
}

std::string Mock::unexpected(const Request &request) const {
  const Operation *operation = request.operation;
  if (operation == nullptr) {
    return fmt::format("unexpected request of no operation: message type {}, module {}, bytes {}",
                       request.message_type, request.module,
                       request.bytes.empty() ? "none" : to_spaced_hex(request.bytes));
  }
  std::string text = fmt::format("unexpected call: {}{}", operation->name,
                                 words_of(*operation, request.module, request.bytes));
  const Expectation *nearest = nullptr;
  auto distance = [&request](const Expectation &one) {
    return std::tuple(differences(one.content, request.module, request.bytes).size(),
                      one.met == one.max);
  };
  const Expectation *next = nullptr;
  for (const auto &one : expectations_) {
    if (next == nullptr && one->met < one->min) next = one.get();
    if (one->operation != operation) continue;
    if (nearest == nullptr || distance(*one) < distance(*nearest)) nearest = one.get();
  }
  if (nearest != nullptr) {
    return text + fmt::format("\n  nearest expectation: {}", nearest->text) +
           why_not(*nearest, request);
  }
  if (next != nullptr) return text + fmt::format("\n  next expectation: {}", next->text);
  return text + "\n  no call is expected";
}

void Mock::append_calls(std::string &text) const {
  for (const auto &one : expectations_) {
    if (one->held > 0) {
      append_line(text, fmt::format("still held: {}; expected olt_mock_release", one->text));
    }
    if (one->awaits_second) {
      append_line(text, fmt::format("half a call: {}; expected module {} to be asked, too",
                                    one->text, one->operation->address.second_module));
    } else if (one->met < one->min) {
      append_line(text,
                  fmt::format("{}: {}; expected {}",
                              one->met == 0 ? "not called"
                                            : fmt::format("called {}", counted(one->met, "time")),
                              one->text, times_expected(*one)));
    } else if (!one->plans.empty() && one->plans.rbegin()->first > one->met) {
      append_line(text,
                  fmt::format("called {}: {}; expected call {}, for which something is planned",
                              counted(one->met, "time"), one->text, one->plans.rbegin()->first));
    }
  }
  if (failing_allocation_ != 0) {
    append_line(text, fmt::format("no allocation failed: {} made; expected allocation {} to fail",
                                  allocations_, failing_allocation_));
  }
}

/// Each leak is reported once.
void Mock::append_leaks(std::string &text) {
  for (const auto &[handle, reply] : replies_) {
    if (!reply.counts) continue;
    append_line(text, fmt::format("reply not released: that of {}; expected IPC_Free({})",
                                  reply.operation, handle));
  }
  replies_.clear();
  for (auto &[address, block] : blocks_) {
    if (!block.counts) continue;
    append_line(text, fmt::format("block not released: {} of {}, line {}; expected ___FREE",
                                  counted(block.size, "byte"), block.tag, block.line));
    block.counts = false;
  }
}

const char *Mock::finish(int &reports) {
  std::lock_guard guard(lock_);
  std::string text;
  append_calls(text);
  append_leaks(text);
  texts_.clear();
  const char *report = text.empty() ? nullptr : keep_report(std::move(text));
  for (const auto &one : expectations_) one->is_released = true;
  changed_.notify_all();
  expectations_.clear();
  recording_.clear();
  turn_ = 0;
  failing_allocation_ = 0;
  reports = std::exchange(reports_, 0);
  return report;
}

}  // namespace olt::mock
