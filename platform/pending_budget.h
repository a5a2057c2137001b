/// How much memory half-received requests may take.
#ifndef OLT_PLATFORM_PENDING_BUDGET_H
#define OLT_PLATFORM_PENDING_BUDGET_H

#include <cstddef>

namespace olt::platform {

/// Shared by all connections of a server, on its thread.
class PendingBudget {
 public:
  explicit PendingBudget(size_t limit) : left_(limit) {}

  /// One connection's part of it.
  class Share {
   public:
    explicit Share(PendingBudget &budget) : budget_(budget) {}
    Share(const Share &) = delete;
    Share &operator=(const Share &) = delete;
    ~Share() { release(); }

    /// @return false, with nothing reserved, when less is left
    bool reserve(size_t bytes) {
      if (bytes > budget_.left_) return false;
      budget_.left_ -= bytes;
      reserved_ += bytes;
      return true;
    }

    void release() {
      budget_.left_ += reserved_;
      reserved_ = 0;
    }

   private:
    PendingBudget &budget_;
    size_t reserved_ = 0;
  };

 private:
  size_t left_;
};

}  // namespace olt::platform

#endif
