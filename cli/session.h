/// One run of oltctl: carries out commands on one box.
#ifndef OLT_CLI_SESSION_H
#define OLT_CLI_SESSION_H

#include <span>
#include <string>

#include "catalog/operation.h"
#include "cli/access.h"
#include "cli/options.h"

namespace olt::cli {

class Session {
 public:
  explicit Session(const Options &options);

  /// Carries out one command and prints what it brings. Throws Error.
  void run(std::span<const std::string> words);

  /// Keeps what the embedded box holds. Throws Error.
  void close() { box_.close(); }

 private:
  void run_operation(const catalog::Operation &operation, std::span<const std::string> words);
  void run_control(std::span<const std::string> words);
  void run_walk(const std::string &reader);

  const Options &options_;
  Access box_;
};

}  // namespace olt::cli

#endif
