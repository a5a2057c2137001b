/// Lines about requests that were not recorded, each once.
#ifndef OLT_REPLAY_COMPLAINTS_H
#define OLT_REPLAY_COMPLAINTS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "replay/index.h"

namespace olt::replay {

/// "module 2 type 14 set_port_enable": of several operations, those that may have sent it.
std::string name_of(const Request &request, const catalog::Layout &layout);

/// A request that was not recorded, and how it differs from the nearest one that was.
std::string unknown_text(const Index &index, const Request &request, const catalog::Layout &layout);

/// A request that was recorded, but not as the next one.
std::string out_of_order_text(const Index &index, const Request &request, Index::Number expected,
                              const catalog::Layout &layout);

/// Prints each complaint when it comes up first, and counts it from then on.
class Complaints {
 public:
  using Print = std::function<void(const std::string &)>;

  explicit Complaints(Print print) : print_(std::move(print)) {}

  /// The line is made where it is printed. Complaints with the same cause have the same one.
  void add(uint64_t cause, const std::function<std::string()> &line);
  /// "3 times: LINE", for those that came up more than once.
  std::vector<std::string> repeated() const;

 private:
  struct Complaint {
    std::string line;
    uint64_t count = 1;
  };

  const Print print_;
  std::map<uint64_t, Complaint> complaints_;
  size_t not_shown_ = 0;
};

}  // namespace olt::replay

#endif
