#include "box/simulator.h"

#include <fmt/format.h>

#include "box/state/state_file.h"

namespace olt::box {

namespace {

constexpr uint32_t kCommand = 1;
constexpr size_t kMaxCommand = 65'536;

/// Checks the faults before anything is created or locked.
Options checked(Options options) {
  for (const std::string &fault : options.faults) fault_from_text(fault);
  return options;
}

StateDirectory open_state(const Options &options, std::chrono::milliseconds patience) {
  StateDirectory state(options.state_dir, patience);
  if (options.fresh) {
    state.remove(kRunningFile);
    state.remove(kSavedFile);
  }
  return state;
}

Answer status_only(Status status) {
  Answer answer;
  answer.status = static_cast<uint16_t>(status);
  return answer;
}

}  // namespace

Simulator::Simulator(Options options, Clock clock, std::chrono::milliseconds patience)
    : options_(checked(std::move(options))),
      clock_(std::move(clock)),
      topology_(load_topology(options_.topology_file)),
      directory_(open_state(options_, patience)),
      state_(topology_, clock_()),
      hardware_(topology_, directory_, Listings(options_.listing_dir, options_.listing_group),
                clock_),
      control_(faults_, counters_) {
  hardware_.start(make_families(hardware_, state_));
  add_messages();
  if (!resume()) hardware_.events().record(Level::kNotice, kMainModule, "started");
  for (const std::string &fault : options_.faults) faults_.add(fault_from_text(fault), "");
}

void Simulator::add_messages() {
  for (const auto &family : hardware_.families()) {
    for (Message &message : family->messages()) {
      if (message.secret.end > 0) secrets_[message.type] = message.secret;
      Key key = {message.module, message.type};
      messages_.emplace(key, std::move(message));
    }
  }
}

bool Simulator::resume() {
  if (!options_.keep_running_state) return false;
  return read_state_file(directory_, kRunningFile, [this](ObjectReader &members) {
    hardware_.resume(members.get("box"), members.place_of("box"));
    faults_.from_json(members.get("faults"), members.place_of("faults"));
    counters_.from_json(members.get("counters"), members.place_of("counters"));
  });
}

void Simulator::keep() {
  if (!options_.keep_running_state) return;
  write_state_file(directory_, kRunningFile,
                   {{"box", hardware_.running()},
                    {"faults", faults_.to_json()},
                    {"counters", counters_.to_json()}});
}

Answer Simulator::handle(uint32_t module, uint32_t type, std::span<const uint8_t> request) {
  Exchange exchange = {clock_(), module, type, {}, {}, request, nullptr};
  Answer answer;
  if (module == kControlModule) {
    exchange.name = "control";
    answer = answer_control(type, request);
  } else {
    exchange.fault = faults_.apply(module, type);
    if (exchange.fault == nullptr || !exchange.fault->replaces_handling()) {
      answer = answer_module(module, type, request);
    } else {
      answer.status = exchange.fault->status;
      answer.action = exchange.fault->action;
    }
    if (exchange.fault != nullptr) answer.delay_ms = exchange.fault->delay_ms;
    count(module, type, answer, exchange.fault);
  }
  if (options_.trace) trace(exchange, answer);
  return answer;
}

Answer Simulator::answer_control(uint32_t type, std::span<const uint8_t> request) {
  if (type != kCommand) return status_only(Status::kUnserved);
  if (request.size() > kMaxCommand) return status_only(Status::kBadLength);
  std::string reply = control_.answer(std::string(request.begin(), request.end()));
  Answer answer;
  answer.reply.assign(reply.begin(), reply.end());
  return answer;
}

Answer Simulator::answer_module(uint32_t module, uint32_t type, std::span<const uint8_t> request) {
  auto found = messages_.find({module, type});
  if (found == messages_.end()) return status_only(Status::kUnserved);
  Reply reply;
  Answer answer = status_only(serve(found->second, request, reply));
  if (answer.status == 0) answer.reply = reply.take();
  return answer;
}

Status Simulator::serve(const Message &message, std::span<const uint8_t> request, Reply &reply) {
  if (request.size() < message.request.min || request.size() > message.request.max) {
    return Status::kBadLength;
  }
  try {
    return message.handler(Request(request), reply);
  } catch (const BadLength &) {
    return Status::kBadLength;
  } catch (const StorageFailure &failure) {
    hardware_.events().record(Level::kError, message.module, failure.what());
    return Status::kStorage;
  } catch (const std::exception &error) {
    hardware_.events().record(Level::kCritical, message.module, error.what());
    return Status::kInternal;
  }
}

void Simulator::count(uint32_t module, uint32_t type, const Answer &answer, const Fault *fault) {
  MessageCounts counts;
  counts.exchanges = 1;
  counts.faults = fault == nullptr ? 0 : 1;
  if (fault == nullptr || !fault->replaces_handling()) {
    auto status = static_cast<Status>(answer.status);
    counts.refused = status == Status::kOk ? 0 : 1;
    counts.unserved = status == Status::kUnserved ? 1 : 0;
    counts.bad_lengths = status == Status::kBadLength ? 1 : 0;
  }
  counters_.add(module, type, counts);
  if (counts.unserved != 0 || counts.bad_lengths != 0) {
    hardware_.events().record(Level::kWarning, module,
                              fmt::format("message type {}: {}", type, status_text(answer.status)));
  }
}

void Simulator::trace(Exchange exchange, const Answer &answer) const {
  auto message = messages_.find({exchange.module, exchange.type});
  if (message != messages_.end()) exchange.name = message->second.name;
  auto secret = secrets_.find(exchange.type);
  if (secret != secrets_.end()) exchange.secret = secret->second;
  options_.trace(trace_line(exchange, answer));
}

}  // namespace olt::box
