#include "replay/replay.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "base/clock.h"
#include "base/text.h"

namespace olt::replay {

using capture::Packet;

namespace {

constexpr uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr uint64_t kNanosecondsPerMillisecond = 1'000'000;

}  // namespace

Replay::Replay(Index index, Settings settings)
    : index_(std::move(index)), settings_(std::move(settings)), complaints_(settings_.complain) {
  if (settings_.order == Order::kByClient) clients_.emplace(index_);
}

void Replay::serve(olt_server *server) {
  auto handler = [](void *replay, const olt_request *sent, olt_answer *answer) {
    static_cast<Replay *>(replay)->answer(*sent, *answer);
  };
  char error[256] = "";
  for (uint32_t module : index_.modules())
    if (olt_server_add(server, module, handler, this, error) != 0) throw std::runtime_error(error);
}

void Replay::answer(const olt_request &sent, olt_answer &answer) {
  const Request request = {
      sent.module, sent.message_type, {static_cast<const uint8_t *>(sent.data), sent.length}};
  const RequestHash hash = index_.hash_of(request);
  Index::Number number = take(sent.process, hash);
  if (number == Index::kNone) {
    answer.status = refuse(sent.process, request, hash);
    return;
  }
  recorded_ = index_.answer(number);
  index_.count_served(number);
  ++answered_;
  if (settings_.trace) trace(request, recorded_);
  if (!provide_listing(number)) {
    answer.status = kNoListing;
    return;
  }
  play(recorded_, answer);
}

Index::Number Replay::take(uint32_t process, const RequestHash &hash) {
  return clients_ ? clients_->take(process, hash) : index_.take(hash);
}

/// @return the status
uint16_t Replay::refuse(uint32_t process, const Request &request, const RequestHash &hash) {
  const catalog::Layout &layout = *settings_.layout;
  if (!index_.has(hash)) {
    ++not_recorded_;
    complaints_.add(hash.plain, [&] { return unknown_text(index_, request, layout); });
    return kNotRecorded;
  }
  ++out_of_order_;
  Index::Number expected = clients_->expected(process);
  complaints_.add(hash.plain + expected + 1, [&] {
    return clients_->follows(process)
               ? out_of_order_text(index_, request, expected, layout)
               : fmt::format(
                     "{}: out of order; expected the first request of a recorded process "
                     "that no other client follows",
                     name_of(request, layout));
  });
  return kOutOfOrder;
}

/// @return false when the listing that the reply names cannot be served
bool Replay::provide_listing(Index::Number number) {
  bool has_reply = recorded_.result == OLT_TRANSPORT_OK && recorded_.status == 0;
  if (!settings_.listings || !has_reply || recorded_.record.empty()) return true;
  try {
    settings_.listings->provide(index_.request(number), recorded_);
    return true;
  } catch (const ListingFiles::Unavailable &error) {
    complaints_.add(std::hash<std::string>()(error.what()), [&error] { return error.what(); });
    return false;
  }
}

/// A failure that took the whole time-out becomes silence, any other one a closed connection.
void Replay::play(const Packet &recorded, olt_answer &answer) const {
  bool took_all = recorded.duration / kNanosecondsPerSecond >= recorded.timeout;
  if (recorded.result == OLT_TRANSPORT_TIMED_OUT || (recorded.result != 0 && took_all)) {
    answer.action = OLT_ANSWER_WITHHOLD;
    return;
  }
  if (recorded.result != OLT_TRANSPORT_OK) answer.action = OLT_ANSWER_DISCONNECT;
  answer.status = recorded.status;
  answer.reply = recorded.record.data();
  answer.reply_length = static_cast<uint32_t>(recorded.record.size());
  if (settings_.speed == 0) return;
  uint64_t delay = recorded.duration / settings_.speed / kNanosecondsPerMillisecond;
  answer.delay_ms = static_cast<uint32_t>(std::min<uint64_t>(delay, UINT32_MAX));
}

void Replay::trace(const Request &request, const Packet &recorded) const {
  std::string outcome =
      recorded.result != OLT_TRANSPORT_OK
          ? olt_transport_text(static_cast<int32_t>(recorded.result))
          : fmt::format("status {}, {}", recorded.status, counted(recorded.record.size(), "byte"));
  settings_.trace(fmt::format(
      "{} {}: {}, exchange {} of process {}", utc_microseconds(std::chrono::system_clock::now()),
      name_of(request, *settings_.layout), outcome, recorded.exchange, recorded.process));
}

std::vector<std::string> Replay::summary() const {
  std::vector<std::string> lines = {
      fmt::format("answered {}; {} not recorded, {} out of order",
                  counted(static_cast<size_t>(answered_), "request"), not_recorded_, out_of_order_),
      fmt::format("{} of {} served", index_.served(), counted(index_.size(), "recorded exchange"))};
  std::vector<std::string> repeated = complaints_.repeated();
  lines.insert(lines.end(), repeated.begin(), repeated.end());
  return lines;
}

}  // namespace olt::replay
