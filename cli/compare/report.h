/// What a comparison prints and writes.
#ifndef OLT_CLI_COMPARE_REPORT_H
#define OLT_CLI_COMPARE_REPORT_H

#include <array>
#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "capture/exchanges.h"
#include "catalog/operation.h"
#include "cli/compare/differences.h"

namespace olt::cli {

/// Why an exchange is not sent.
enum class Skip : uint8_t { kChanging, kMasked, kCut, kIncomplete };
inline constexpr size_t kSkips = 4;

/// An exchange and what has sent it.
struct Recorded {
  const capture::Exchange &exchange;
  std::span<const catalog::Operation *const> operations;
  std::string name;  ///< of the first operation, or "type 12 to module 2"
};

class CompareReport {
 public:
  void skip(const Recorded &recorded, Skip reason);
  /// @return what is printed; nothing without differences
  std::string add(const Recorded &recorded, const std::vector<FieldDifference> &differences,
                  bool as_json);

  /// Of an exchange that is sent.
  void count_listing(bool is_compared) { ++(is_compared ? listings_ : missing_listings_); }

  size_t sent() const { return sent_; }
  size_t differing() const { return differing_; }

  /// The end of what is printed.
  std::string summary(bool as_json) const;
  /// The whole as JUnit XML: a test case for each operation.
  std::string junit(const std::string &capture) const;

 private:
  struct Count {
    size_t equal = 0;
    size_t differing = 0;
    size_t skipped = 0;
    std::string failures{};  ///< the first ones, as text
    size_t exchanges() const { return equal + differing + skipped; }
  };

  std::string text() const;
  std::string json() const;

  std::map<std::string, Count> counts_;
  std::array<size_t, kSkips> skips_{};
  size_t sent_ = 0;
  size_t differing_ = 0;
  size_t listings_ = 0;          ///< that were compared
  size_t missing_listings_ = 0;  ///< that were not kept
};

}  // namespace olt::cli

#endif
