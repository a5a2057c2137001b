#include "capture/exchanges.h"

#include <fmt/format.h>

#include <utility>

namespace olt::capture {

namespace {

/// Requests that wait for their answer, at most: in a whole capture, there is one.
constexpr size_t kMaxWaiting = 1'000;

}  // namespace

std::optional<Exchange> Exchanges::next() {
  while (waiting_.size() <= kMaxWaiting) {
    std::optional<Packet> packet = reader_.next();
    if (!packet) break;
    auto request = waiting_.find(packet->identity());
    if (!packet->is_answer) {
      waiting_.insert_or_assign(packet->identity(), std::move(*packet));
    } else if (request == waiting_.end()) {
      return Exchange{std::nullopt, std::move(packet)};
    } else {
      Exchange exchange{std::move(request->second), std::move(packet)};
      waiting_.erase(request);
      return exchange;
    }
  }
  if (waiting_.empty()) return std::nullopt;
  Exchange unanswered{std::move(waiting_.begin()->second), std::nullopt};
  waiting_.erase(waiting_.begin());
  return unanswered;
}

std::string kept_listing_name(const Packet &packet) {
  return fmt::format("{}-{}-{}-{}.listing", packet.run, packet.process, packet.thread,
                     packet.exchange);
}

}  // namespace olt::capture
