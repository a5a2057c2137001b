/// One run of oltctl: calls operations on one box and prints the results.
#ifndef OLT_CLI_SESSION_H
#define OLT_CLI_SESSION_H

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "catalog/operation.h"
#include "cli/box/access.h"
#include "cli/box/control_client.h"
#include "cli/call/call.h"
#include "cli/compare/compare.h"
#include "cli/options.h"
#include "cli/output/format.h"
#include "cli/update/update.h"
#include "cli/walk/query.h"
#include "cli/watch/watch.h"

namespace olt::cli {

class Session {
 public:
  explicit Session(const Options &options);

  // All of these throw Error.

  void run_operation(const catalog::Operation &operation, std::span<const std::string> given);
  /// Sends a firmware image and follows the update to its end.
  /// @param fields of the head of each piece, as FIELD=VALUE
  void run_update(const UpdateTarget &target, const std::string &path,
                  std::span<const std::string> fields);
  void run_walk(Query query);
  /// Calls operations again and again.
  void run_watch(const WatchPlan &plan);
  /// Compares what the box answers with what a capture recorded.
  void run_compare(ComparePlan plan);
  void run_control(const ControlRequest &request);
  /// Writes the box's configuration to a file; to standard output when the path is empty.
  void run_config_export(const std::string &path);
  /// Has the box take the configuration in a file; "-" is standard input.
  void run_config_import(const std::string &path);
  /// Prints how the second configuration differs from the first; without a first, from the box's.
  void run_config_diff(const std::string &from, const std::string &to);

  /// The one that the options name, read when it is first needed.
  const catalog::Layout &layout();

  Access &box() { return box_; }

  Format format() const { return options_.format; }
  bool wants_json() const { return format() == Format::kJson; }

  /// Keeps what the embedded box holds.
  void close() { box_.close(); }
  /// The same from another thread, when the program is about to end.
  void close_for_good() {
    box_.close_for_good();
    Screen::leave();
  }

 private:
  struct Consent {
    bool yes;
    bool zero;
  };
  /// What the options say, and words of a line that are such options, which it takes out.
  Consent consent_in(std::vector<std::string> &words) const;
  /// Opens the box, completes the call, and asks.
  /// @return what it changes, if the present values were read
  std::optional<Changes> prepare(Call &call, const Consent &consent);
  /// Whether the result only says that nothing could be read.
  bool fell_back(const Result &result);
  void print_rows(const std::string &reader, const Query &query, std::vector<NamedValues> &kept);

  const Options &options_;
  std::shared_ptr<const catalog::Layout> layout_;
  Access box_;
  std::unique_ptr<Formatter> formatter_;
};

}  // namespace olt::cli

#endif
