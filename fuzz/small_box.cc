#include "fuzz/small_box.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "box/state/json_form.h"
#include "box/state/seal.h"
#include "box/state/state_file.h"
#include "fuzz/target.h"

namespace olt::fuzz {

using box::Answer;
using box::Status;

namespace {

constexpr uint32_t kSave = 8;
constexpr uint32_t kCommand = 1;
constexpr size_t kMaxInReply = 65'535;
constexpr auto kLastStatus = static_cast<uint16_t>(Status::kOffline);

constexpr char kTopology[] =
    R"({"olt": {"ethernet_ports": 3, "ports": [{"port": 2, "plugged": false}]},
        "pon": {"interfaces": 2, "onus_per_interface": 3, "uni_ports_per_onu": 2,
                "voice_lines_per_onu": 2}})";

const test::Folder &folder() {
  static const test::Folder instance;
  return instance;
}

std::string state_file(const char *name) {
  return folder() / "state/" + name;
}

box::Options options(bool fresh) {
  static const std::string topology = folder().write("topology.json", kTopology);
  box::Options options;
  options.state_dir = folder() / "state";
  options.listing_dir = folder() / "listings";
  options.topology_file = topology;
  options.keep_running_state = true;
  options.fresh = fresh;
  return options;
}

const MessageRow *find_row(uint32_t module, uint32_t type) {
  for (const MessageRow &row : message_rows()) {
    if (row.module == module && row.type == type) return &row;
  }
  return nullptr;
}

std::string described(uint32_t module, uint32_t type, size_t length, const Answer &answer) {
  return fmt::format("module {} type {} request {} status {} reply {}", module, type, length,
                     answer.status, answer.reply.size());
}

std::string readable(const std::string &file) {
  return box::to_json_text(box::unseal(file), box::Secrets::kShown);
}

std::string compared(std::string_view name, const std::string &one, const std::string &other) {
  return fmt::format("{}\n--- before\n{}\n--- after\n{}", name, one, other);
}

}  // namespace

const box::Topology &small_topology() {
  static const box::Topology instance = box::parse_topology(kTopology);
  return instance;
}

const std::vector<MessageRow> &message_rows() {
  static const std::vector<MessageRow> instance = [] {
    box::StateDirectory state(folder() / "table", std::chrono::seconds(1));
    box::Hardware hardware(small_topology(), state,
                           box::Listings(folder() / "table", std::nullopt, 0),
                           std::chrono::system_clock::now);
    box::SharedState shared(small_topology(), hardware.now());
    std::vector<MessageRow> rows;
    for (const auto &family : box::make_families(hardware, shared)) {
      for (const box::Message &message : family->messages()) {
        rows.push_back({message.module, message.type, std::string(message.name), message.request});
      }
    }
    std::sort(rows.begin(), rows.end(), [](const MessageRow &one, const MessageRow &other) {
      return std::pair(one.type, one.module) < std::pair(other.type, other.module);
    });
    return rows;
  }();
  return instance;
}

SmallBox::SmallBox(Start start) {
  this->start(start == Start::kFresh);
}

void SmallBox::start(bool fresh) {
  box::Options chosen = options(fresh);
  chosen.trace = [this](std::string_view line) { trace_ = line; };
  simulator_ = std::make_unique<box::Simulator>(
      std::move(chosen), [this] { return now_; }, std::chrono::milliseconds(0));
}

void SmallBox::restart() {
  simulator_->keep();
  simulator_.reset();
  start(false);
}

void SmallBox::write_state(const char *name, std::string_view content) {
  std::filesystem::create_directories(folder() / "state");
  test::write_file(state_file(name), content);
}

std::string SmallBox::read_state(const char *name) {
  return test::read_file(state_file(name));
}

Answer SmallBox::ask(uint32_t module, uint32_t type, std::span<const uint8_t> request) {
  trace_.clear();
  Answer answer = simulator_->handle(module, type, request);
  require_answer(module, type, request.size(), answer);
  require_line(trace_);
  if (module == box::kControlModule) return answer;
  auto status = static_cast<Status>(answer.status);
  ++asked_.exchanges;
  if (status != Status::kOk) ++asked_.refused;
  if (status == Status::kUnserved) ++asked_.unserved;
  if (status == Status::kBadLength) ++asked_.bad_lengths;
  return answer;
}

void SmallBox::require_answer(uint32_t module, uint32_t type, size_t length, const Answer &answer) {
  auto rule = [&](bool holds, std::string_view text) {
    if (!holds) require(false, text, described(module, type, length, answer));
  };
  auto status = static_cast<Status>(answer.status);
  rule(answer.status <= kLastStatus, "a status is one of the documented");
  rule(status != Status::kInternal, "the box never fails");
  rule(status != Status::kStorage, "the box can write where there is room");
  rule(answer.reply.size() <= kMaxInReply, "a reply fits into 16 bits of length");
  rule(status == Status::kOk || answer.reply.empty(), "a refused request has no reply");
  rule(answer.action == Answer::Action::kSend && answer.delay_ms == 0,
       "without faults every request is answered at once");
  if (module == box::kControlModule) return;
  const MessageRow *row = find_row(module, type);
  rule((row == nullptr) == (status == Status::kUnserved), "the table says what is served");
  bool fits = row != nullptr && length >= row->request.min && length <= row->request.max;
  rule(row == nullptr || fits || status == Status::kBadLength, "the table says what length fits");
}

Json SmallBox::command(std::string_view text) {
  std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t *>(text.data()), text.size());
  Answer answer = ask(box::kControlModule, kCommand, bytes);
  require(answer.status == 0, "the control module answers every text");
  Json reply = Json::parse(answer.reply.begin(), answer.reply.end(), nullptr, false);
  require(reply.is_object() && reply.contains("ok") && reply["ok"].is_boolean(),
          "the control module answers with JSON that says whether it did it");
  if (reply["ok"] == false) {
    require(reply.size() == 2 && reply["error"].is_string(), "a refused command has a reason");
    require_line(reply["error"].get<std::string>());
  }
  return reply;
}

void SmallBox::require_counters() {
  Json counters = command(R"({"command": "counters"})")["counters"];
  box::MessageCounts sum;
  for (const Json &message : counters["messages"]) {
    sum.exchanges += message["exchanges"].get<uint64_t>();
    sum.refused += message["refused"].get<uint64_t>();
    require(message["refused"] <= message["exchanges"], "what is refused was asked",
            message.dump());
    require(message["unserved"].get<uint64_t>() + message["bad_lengths"].get<uint64_t>() <=
                message["refused"].get<uint64_t>(),
            "what is not served was refused", message.dump());
  }
  bool right = counters["exchanges"] == asked_.exchanges && counters["refused"] == asked_.refused &&
               counters["unserved"] == asked_.unserved &&
               counters["bad_lengths"] == asked_.bad_lengths && counters["faults"] == 0;
  require(right, "the box counts what was asked", counters.dump());
  require(sum.exchanges <= asked_.exchanges && sum.refused <= asked_.refused,
          "messages add up to no more than the totals", counters.dump());
}

void SmallBox::require_persistence() {
  auto written = [this](const char *name) {
    if (name == box::kSavedFile) {
      require(ask(box::kMainModule, kSave, {}).status == 0, "a configuration can be saved");
    } else {
      simulator_->keep();
    }
    return read_state(name);
  };
  std::string saved = written(box::kSavedFile);
  std::string kept = written(box::kRunningFile);
  restart();
  std::string kept_again = written(box::kRunningFile);
  require(kept == kept_again, "a box goes on from what it has kept",
          compared("running", readable(kept), readable(kept_again)));
  // Without a running state, what counts is the saved configuration.
  simulator_.reset();
  std::filesystem::remove(state_file(box::kRunningFile));
  start(false);
  asked_ = {};
  std::string saved_again = written(box::kSavedFile);
  require(saved == saved_again, "a saved configuration is loaded as it was saved",
          compared("saved", readable(saved), readable(saved_again)));
}

void SmallBox::require_listings() {
  std::error_code missing;
  for (const auto &entry : std::filesystem::directory_iterator(folder() / "listings", missing)) {
    std::string text = test::read_file(entry.path().string());
    require(!text.empty(), "a listing is not empty", entry.path().string());
    require_lines(text);
    std::filesystem::remove(entry.path());
  }
}

}  // namespace olt::fuzz
