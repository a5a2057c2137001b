/// The requests of a capture, sent to another box, whose answers are compared.
#ifndef OLT_CLI_COMPARE_COMPARE_H
#define OLT_CLI_COMPARE_COMPARE_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "cli/box/access.h"
#include "cli/compare/differences.h"
#include "cli/compare/report.h"
#include "cli/output/format.h"
#include "cli/show/selection.h"

namespace olt::cli {

struct ComparePlan {
  std::string path;
  SelectedExchanges selected;
  std::optional<uint32_t> count;  ///< exchanges that are sent at most
  FieldPatterns ignored;
  std::string junit;            ///< a file; empty for none
  std::filesystem::path files;  ///< where listings were kept; empty: they are not compared
  bool all = false;             ///< requests that change the box, too
  bool asks = true;             ///< before requests that cannot be taken back
};

class Compare {
 public:
  Compare(Access &box, const catalog::Layout &layout, const Detail &detail, Format format)
      : box_(box), layout_(layout), detail_(detail), as_json_(format == Format::kJson) {}

  /// Throws Error: with status 1 when something differs, 2 when it cannot compare.
  void run(const ComparePlan &plan);

 private:
  template <typename Function>
  void each_recorded(const ComparePlan &plan, Function function);
  void check(const ComparePlan &plan);
  std::vector<FieldDifference> ask_box(const Recorded &recorded,
                                       const std::filesystem::path &files);
  std::vector<FieldDifference> compare_listing(const std::filesystem::path &kept,
                                               const std::string &now);

  Access &box_;
  const catalog::Layout &layout_;
  Detail detail_;
  bool as_json_;
  CompareReport report_;
};

}  // namespace olt::cli

#endif
