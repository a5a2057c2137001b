/// How much memory half-received requests may take.
#ifndef OLT_PLATFORM_PENDING_BUDGET_H
#define OLT_PLATFORM_PENDING_BUDGET_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <list>
#include <utility>

namespace olt::platform {

/// Shared by all connections of a server, on its thread.
class PendingBudget {
 public:
  explicit PendingBudget(size_t limit) : limit_(limit), left_(limit) {}

  /// One connection's part of it.
  class Share {
   public:
    /// @param give_way releases the share: another one needs the memory
    Share(PendingBudget &budget, std::function<void()> give_way)
        : budget_(budget), give_way_(std::move(give_way)) {}
    Share(const Share &) = delete;
    Share &operator=(const Share &) = delete;
    ~Share() { release(); }

    /// Has those give way that wait for bytes, the one that began first, until there is enough.
    /// @return false, with nothing reserved, when even that would not do
    bool reserve(size_t bytes) {
      if (bytes > budget_.limit_ - reserved_) return false;
      while (bytes > budget_.left_) {
        auto first = std::find_if(budget_.waiting_.begin(), budget_.waiting_.end(),
                                  [this](const Share *other) { return other != this; });
        if (first == budget_.waiting_.end()) return false;
        (*first)->give_way_();
      }
      budget_.left_ -= bytes;
      reserved_ += bytes;
      return true;
    }

    /// The rest of a request is awaited.
    void begin_waiting() {
      if (reserved_ == 0 || waits_) return;
      budget_.waiting_.push_back(this);
      waits_ = true;
    }

    /// The request is complete.
    void end_waiting() {
      if (waits_) budget_.waiting_.remove(this);
      waits_ = false;
    }

    void release() {
      end_waiting();
      budget_.left_ += reserved_;
      reserved_ = 0;
    }

   private:
    PendingBudget &budget_;
    const std::function<void()> give_way_;
    size_t reserved_ = 0;
    bool waits_ = false;
  };

 private:
  const size_t limit_;
  size_t left_;
  std::list<Share *> waiting_;  ///< in the order in which they began
};

}  // namespace olt::platform

#endif
