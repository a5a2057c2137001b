/// Answers requests with what was recorded.
#ifndef OLT_REPLAY_REPLAY_H
#define OLT_REPLAY_REPLAY_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "platform/olthost.h"
#include "replay/clients.h"
#include "replay/complaints.h"
#include "replay/index.h"
#include "replay/listing_files.h"

namespace olt::replay {

/// Statuses of requests that no recorded exchange answers.
inline constexpr uint16_t kNoListing = 65532;
inline constexpr uint16_t kOutOfOrder = 65533;
inline constexpr uint16_t kNotRecorded = 65534;

struct Settings {
  using Print = std::function<void(const std::string &)>;

  Order order = Order::kInTurn;
  uint64_t speed = 0;  ///< how many times as fast as recorded; 0: at once
  std::shared_ptr<const catalog::Layout> layout;
  std::unique_ptr<ListingFiles> listings;  ///< null: they are not served
  Print complain;
  Print trace;  ///< may be empty
};

class Replay {
 public:
  Replay(Index index, Settings settings);
  Replay(const Replay &) = delete;
  Replay &operator=(const Replay &) = delete;

  /// Serves the recorded modules.
  void serve(olt_server *server);

  /// What was answered, and each complaint that came up more than once.
  std::vector<std::string> summary() const;

 private:
  void answer(const olt_request &sent, olt_answer &answer);
  Index::Number take(uint32_t process, const RequestHash &hash);
  uint16_t refuse(uint32_t process, const Request &request, const RequestHash &hash);
  bool provide_listing(Index::Number number);
  void play(const capture::Packet &recorded, olt_answer &answer) const;
  void trace(const Request &request, const capture::Packet &recorded) const;

  Index index_;
  const Settings settings_;
  std::optional<Clients> clients_;  ///< with Order::kByClient
  Complaints complaints_;
  capture::Packet recorded_;  ///< the last answer; its record is sent after the handler
  uint64_t answered_ = 0;
  uint64_t not_recorded_ = 0;
  uint64_t out_of_order_ = 0;
};

}  // namespace olt::replay

#endif
