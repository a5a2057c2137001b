#include "cli/line_history.h"

#include <cerrno>
#include <system_error>

#include "cli/box/own_state_folder.h"
#include "cli/text/error.h"

namespace olt::cli {

namespace {

constexpr int kHistoryLines = 1000;

History *read_history(const std::filesystem::path &path) {
  History *lines = history_init();
  HistEvent event;
  history(lines, &event, H_SETSIZE, kHistoryLines);
  history(lines, &event, H_SETUNIQUE, 1);
  history(lines, &event, H_LOAD, path.c_str());
  return lines;
}

}  // namespace

LineHistory::LineHistory()
    : path_(own_state_folder() / "history"),
      recalled_(read_history(path_)),
      kept_(read_history(path_)) {}

LineHistory::~LineHistory() {
  history_end(recalled_);
  history_end(kept_);
}

void LineHistory::add(const std::string &line, const std::optional<std::string> &kept) {
  HistEvent event;
  history(recalled_, &event, H_ENTER, kept.value_or(line).c_str());
  if (kept) history(kept_, &event, H_ENTER, kept->c_str());
}

void LineHistory::save() {
  HistEvent event;
  std::filesystem::path fresh = path_;
  fresh += ".new";
  std::error_code error;
  if (history(kept_, &event, H_SAVE, fresh.c_str()) < 0) {
    error = {errno, std::generic_category()};
  } else {
    std::filesystem::rename(fresh, path_, error);
  }
  if (error) fail("oltctl: cannot write {}: {}", path_.string(), error.message());
}

}  // namespace olt::cli
