/// The least that two processes can do: write, poll and read on a Unix stream socket.
#ifndef OLT_BENCH_BARE_H
#define OLT_BENCH_BARE_H

#include <optional>

#include "bench/contender.h"

namespace olt::bench {

class Bare : public Contender {
 public:
  explicit Bare(std::size_t reply_size);
  ~Bare() override;

  std::string name() const override { return "bare poll, read, write"; }
  void connect() override {}
  void exchange() override;

 private:
  std::vector<char> reply_;
  std::array<int, 2> ends_{};
  std::optional<Child> server_;
};

}  // namespace olt::bench

#endif
