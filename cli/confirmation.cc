#include "cli/confirmation.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "cli/text/error.h"
#include "cli/text/question.h"

namespace olt::cli {

namespace {

void require_yes(const catalog::Operation &operation, const std::string &question) {
  if (confirm(question)) return;
  fail("{}: not confirmed, nothing was done; expected y, or --yes", operation.name);
}

}  // namespace

void confirm_act(const catalog::Operation &operation) {
  require_yes(operation, fmt::format("{}: {}. Go on?", operation.name, operation.summary));
}

void confirm_changes(const catalog::Operation &operation, std::span<const Change> changes,
                     bool is_answered) {
  if (changes.empty()) {
    fmt::print(stderr, "{} changes nothing\n", operation.name);
    return;
  }
  size_t column = 0;
  for (const Change &change : changes) column = std::max(column, change.before.name().size());
  fmt::print(stderr, "{} changes:\n", operation.name);
  for (const Change &change : changes) {
    fmt::print(stderr, "  {:<{}}  {} → {}\n", change.before.name(), column,
               coloured(Colour::kRed, change.before.text()),
               coloured(Colour::kGreen, change.after.text()));
  }
  if (!is_answered) require_yes(operation, "Send it?");
}

}  // namespace olt::cli
