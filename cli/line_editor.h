/// Lines typed at a terminal, with completion and help.
#ifndef OLT_CLI_LINE_EDITOR_H
#define OLT_CLI_LINE_EDITOR_H

#include <histedit.h>

#include <memory>
#include <optional>
#include <string>

#include "catalog/layout.h"
#include "cli/shell_signals.h"

namespace olt::cli {

class LineEditor {
 public:
  /// @param lines those that the arrow keys recall
  LineEditor(std::string prompt, History *lines, const ShellSignals &signals,
             const catalog::Layout &layout);
  LineEditor(const LineEditor &) = delete;
  LineEditor &operator=(const LineEditor &) = delete;
  ~LineEditor();

  /// The next line; nothing at the end of input, or when a signal ends the shell.
  std::optional<std::string> line();

  /// What the functions that keys are bound to need.
  struct Context {
    std::string prompt;
    const ShellSignals &signals;
    const catalog::Layout &layout;
  };

 private:
  Context context_;
  EditLine *editor_;
};

}  // namespace olt::cli

#endif
