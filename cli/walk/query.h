/// What a walk shows: which rows, in which order, which of their columns.
#ifndef OLT_CLI_WALK_QUERY_H
#define OLT_CLI_WALK_QUERY_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/result.h"
#include "cli/text/command_options.h"

namespace olt::cli {

class Query {
 public:
  static std::span<const CommandOption> options();

  /// From the words after "walk": a reader, COLUMN=VALUE and options. Throws Error.
  explicit Query(std::span<const std::string> words);

  /// Empty when no reader is given.
  const std::string &reader() const { return reader_; }
  bool sorts() const { return !sort_.empty() || is_reversed_; }

  /// Must come before what follows. Throws Error when the query names other columns than these, or
  /// compares hidden ones.
  void check(std::span<const catalog::Field> columns, const Detail &detail);

  bool takes(const NamedValues &row) const;
  void sort(std::vector<NamedValues> &rows) const;
  /// Leaves the columns that were asked for.
  NamedValues shown(const NamedValues &row) const;

 private:
  struct Condition {
    std::string column;
    std::string value;
  };

  void set_option(std::string_view name, const std::string &value);
  void add_condition(const std::string &word);

  std::string reader_;
  std::vector<Condition> conditions_;
  std::vector<std::string> columns_;  ///< empty for all
  std::vector<std::string> sort_;
  bool is_reversed_ = false;
};

}  // namespace olt::cli

#endif
