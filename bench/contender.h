/// Ways to make one exchange between two processes: 80 bytes out, 256 back.
#ifndef OLT_BENCH_CONTENDER_H
#define OLT_BENCH_CONTENDER_H

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "bench/support.h"

namespace olt::bench {

constexpr std::size_t kRequestSize = 80;
constexpr std::size_t kReplySize = 256;

using Request = std::array<char, kRequestSize>;
using Reply = std::array<char, kReplySize>;

/// A constructor starts the server, as a child that serves when the constructor returns.
class Contender {
 public:
  Contender() = default;
  Contender(const Contender &) = delete;
  Contender &operator=(const Contender &) = delete;
  virtual ~Contender() = default;

  virtual std::string name() const = 0;
  /// Called when all children are there: it may start threads.
  virtual void connect() = 0;
  /// Fails unless the answer has come whole.
  virtual void exchange() = 0;
};

using Contenders = std::vector<std::unique_ptr<Contender>>;

/// The other ways to call something in another process; none unless they were built.
Contenders start_rivals(const Folder &folder);

}  // namespace olt::bench

#endif
