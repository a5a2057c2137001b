#include "box/simulator.h"

#include <fmt/format.h>

#include "base/bad_input.h"
#include "box/state/json_form.h"
#include "box/state/seal.h"
#include "box/state/state_file.h"
#include "box/state/unmask.h"

namespace olt::box {

namespace {

constexpr size_t kMaxCommand = 65'536;

/// The options. Throws BadInput for a fault or topology that is wrong, before anything is changed.
Options checked(Options options) {
  load_topology(options.topology_file);
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

/// The topology that the state was made with; nothing when there is no state.
std::optional<Topology> remembered_topology(const Options &options, const StateDirectory &state) {
  std::optional<Topology> topology;
  for (const char *name : {kRunningFile, kSavedFile}) {
    if (topology || (name == kRunningFile && !options.keep_running_state)) continue;
    auto data = read_state_file(state, name);
    if (!data) continue;
    topology.emplace();
    look_into_state(state, name, *data, [&](Archive &archive) {
      archive.object("topology", [&] { topology->describe(archive); });
    });
  }
  return topology;
}

std::string topology_text(Topology topology) {
  Archive archive;
  topology.describe(archive);
  return to_json_line(archive.take());
}

/// The topology that the options name; without one, that of the state. Throws BadInput when the
/// state was made with another one.
Topology choose_topology(const Options &options, const StateDirectory &state) {
  auto remembered = remembered_topology(options, state);
  if (options.topology_file.empty()) return remembered.value_or(Topology());
  Topology given = load_topology(options.topology_file);
  if (remembered && !options.adopt && topology_text(given) != topology_text(*remembered)) {
    throw BadInput(fmt::format(
        "{}: the state in {} was made with another topology, {}; expected that one or none, --fresh"
        " to forget the state, or --adopt to keep what fits",
        options.topology_file.string(), options.state_dir.string(), topology_text(*remembered)));
  }
  return given;
}

bool fits(Lengths lengths, std::span<const uint8_t> request) {
  return request.size() >= lengths.min && request.size() <= lengths.max;
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
      directory_(open_state(options_, patience)),
      topology_(choose_topology(options_, directory_)),
      state_(topology_, clock_()),
      hardware_(topology_, directory_, listings(), clock_),
      captures_(std::move(options_.capture), options_.listing_dir.string()),
      control_(faults_, counters_, captures_,
               {.read = [this] { return hardware_.configuration(); },
                .take = [this](std::string_view json,
                               Misfits misfits) { return import_configuration(json, misfits); }}) {
  start();
  add_messages();
  if (!resume()) hardware_.events().record(Level::kNotice, kMainModule, "started");
  for (const std::string &fault : options_.faults) {
    std::string data = fault_from_text(fault);
    Archive archive(data);
    faults_.arm(read_fault(archive));
  }
}

void Simulator::add_messages() {
  for (const auto &family : hardware_.families()) {
    for (Message &message : family->messages()) {
      if (message.secret.any()) secrets_[message.type] = message.secret;
      Key key = {message.module, message.type};
      messages_.emplace(key, std::move(message));
    }
  }
}

void Simulator::start() {
  hardware_.set_families(make_families(hardware_, state_));
  auto left_out = hardware_.start(misfits());
  if (left_out.empty()) return;
  report_left_out(left_out);
  hardware_.save();
}

Listings Simulator::listings() const {
  return {options_.listing_dir, options_.listing_group, options_.listing_limit};
}

/// A second box takes the configuration first, so that one that is refused changes nothing.
std::vector<std::string> Simulator::import_configuration(std::string_view json, Misfits misfits) {
  std::string data = unmask(from_json_text(json), hardware_.configuration());
  Topology given;
  Archive archive(data);
  archive.object("topology", [&] { given.describe(archive); });
  if (misfits == Misfits::kRefuse && topology_text(given) != topology_text(topology_)) {
    throw BadInput(fmt::format(
        "/topology: is another one than that of the box, {}; expected that one, or --adopt to keep"
        " what fits",
        topology_text(topology_)));
  }
  {
    SharedState state(topology_, clock_());
    Hardware second(topology_, directory_, listings(), clock_);
    second.set_families(make_families(second, state));
    second.take_configuration(data, misfits);
  }
  auto left_out = hardware_.take_configuration(data, misfits);
  hardware_.events().record(Level::kNotice, kMainModule, "configuration imported");
  return left_out;
}

bool Simulator::resume() {
  if (!options_.keep_running_state) return false;
  auto data = read_state_file(directory_, kRunningFile);
  if (!data) return false;
  report_left_out(take_state(directory_, kRunningFile, *data, misfits(),
                             [this](Archive &archive) { describe_running(archive); }));
  return true;
}

void Simulator::describe_running(Archive &archive) {
  Topology topology = topology_;
  archive.object("topology", [&] { topology.describe(archive); });
  archive.object("box", [&] { hardware_.describe(archive); });
  archive.object("faults", [&] { faults_.describe(archive); });
  archive.object("counters", [&] { counters_.describe(archive); });
}

void Simulator::keep() {
  if (!options_.keep_running_state) return;
  Archive archive;
  describe_running(archive);
  directory_.write(kRunningFile, seal(archive.take()), Durable::kNo);
}

Misfits Simulator::misfits() const {
  return options_.adopt ? Misfits::kLeaveOut : Misfits::kRefuse;
}

void Simulator::report_left_out(const std::vector<std::string> &left_out) const {
  if (!options_.notice) return;
  for (const std::string &reason : left_out) options_.notice("left out: " + reason);
}

Answer Simulator::handle(uint32_t module, uint32_t type, std::span<const uint8_t> request) {
  Exchange exchange = {clock_(), module, type, {}, {}, request, nullptr};
  Answer answer;
  if (module == kControlModule) {
    exchange.name = "control";
    answer = answer_control(type, request);
    if (type == kCapturePiece || !control_.is_plain())
      exchange.secret = {.request = kAllBytes, .reply = kAllBytes};
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

Answer Simulator::answer_capture(std::span<const uint8_t> request) {
  std::optional<Bytes> piece = captures_.read(request);
  if (!piece) return status_only(Status::kNotFound);
  Answer answer;
  answer.reply = std::move(*piece);
  return answer;
}

Answer Simulator::answer_control(uint32_t type, std::span<const uint8_t> request) {
  if (type == kCapturePiece) return answer_capture(request);
  if (type != kControlCommand) return status_only(Status::kUnserved);
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
  if (!fits(message.request, request)) return Status::kBadLength;
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
  bool is_known = message != messages_.end();
  if (is_known) exchange.name = message->second.name;
  auto secret = secrets_.find(exchange.type);
  if (secret != secrets_.end()) exchange.secret = secret->second;
  bool has_secret = exchange.secret.request.end > 0;
  // A request of another form may have its secret anywhere.
  if (has_secret && !(is_known && fits(message->second.request, exchange.request)))
    exchange.secret.request = kAllBytes;
  options_.trace(trace_line(exchange, answer));
}

}  // namespace olt::box
