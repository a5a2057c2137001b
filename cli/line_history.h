/// Lines of earlier shells, and of this one.
#ifndef OLT_CLI_LINE_HISTORY_H
#define OLT_CLI_LINE_HISTORY_H

#include <histedit.h>

#include <filesystem>
#include <optional>
#include <string>

namespace olt::cli {

class LineHistory {
 public:
  LineHistory();
  LineHistory(const LineHistory &) = delete;
  LineHistory &operator=(const LineHistory &) = delete;
  ~LineHistory();

  /// The lines of this shell that can be recalled, after those of earlier ones.
  History *recalled() const { return recalled_; }

  /// @param kept the line as the file may hold it; nothing when it may hold a secret: such a line
  /// can be recalled in this shell alone
  void add(const std::string &line, const std::optional<std::string> &kept);

  /// Writes the file. Throws Error.
  void save();

 private:
  const std::filesystem::path path_;
  History *recalled_;
  History *kept_;
};

}  // namespace olt::cli

#endif
