/// Operations called again and again.
#ifndef OLT_CLI_WATCH_WATCH_H
#define OLT_CLI_WATCH_WATCH_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "cli/box/access.h"
#include "cli/call/call.h"
#include "cli/output/format.h"
#include "cli/watch/frame.h"
#include "cli/watch/rates.h"

namespace olt::cli {

struct WatchPlan {
  struct Item {
    std::string title;
    std::unique_ptr<const Call> call;  ///< with its arguments, not yet made
  };
  std::vector<Item> items;
  std::chrono::milliseconds every{2000};  ///< from the start of one round to that of the next
  std::optional<uint64_t> rounds;         ///< without, until a signal
};

class Watch {
 public:
  Watch(Access &box, const catalog::Layout &layout, const Detail &detail, Format format);

  /// Throws Error when a call of the last round failed.
  void run(const WatchPlan &plan);

 private:
  /// What is remembered of an item from one round to the next.
  struct History {
    Rates rates;
    TextChanges changes;
    std::optional<std::string> content;
  };
  /// A call of one round.
  struct Seen {
    Result result;
    std::string error;    ///< empty when it succeeded
    std::string content;  ///< as text, without what differs each time
    std::vector<Rate> rates;
  };

  void open(const WatchPlan &plan);
  Seen call(const Call &prepared, History &history);
  static void add_lines(std::vector<FrameLine> &frame, const std::string &title, const Seen &seen,
                        History &history);
  static std::string json_of(const Seen &seen, uint64_t round, History &history);

  Access &box_;
  const catalog::Layout &layout_;
  Detail detail_;
  Format format_;
  std::unique_ptr<Formatter> text_ = make_text_formatter();
};

}  // namespace olt::cli

#endif
