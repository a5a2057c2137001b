#include "cli/text/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "cli/text/field_forms.h"
#include "cli/text/terminal_size.h"

namespace olt::cli {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

namespace {

constexpr milliseconds kRedraw(100);

/// Columns that a line may have without wrapping.
size_t room() {
  return terminal_size(STDERR_FILENO).value_or(kUsualTerminal).columns - 1;
}

}  // namespace

milliseconds Pace::elapsed() const {
  return duration_cast<milliseconds>(steady_clock::now() - begin_);
}

uint64_t Pace::bytes_per_second(uint64_t done) const {
  return done * 1000 / std::max<uint64_t>(static_cast<uint64_t>(elapsed().count()), 1);
}

seconds Pace::left(uint64_t done) const {
  uint64_t rate = std::max<uint64_t>(bytes_per_second(done), 1);
  return seconds((total_ - done + rate - 1) / rate);
}

Progress::Progress(std::string title, uint64_t total)
    : title_(std::move(title)),
      total_(total),
      is_terminal_(isatty(STDERR_FILENO) == 1),
      pace_(total) {}

Progress::~Progress() {
  if (columns_ != 0) static_cast<void>(std::fputc('\n', stderr));
}

void Progress::show(uint64_t done) {
  if (is_due(done)) write(line(done));
}

void Progress::show(const std::string &text) {
  write(text);
}

bool Progress::is_due(uint64_t done) {
  if (!is_terminal_) {
    uint64_t tenths = done * 10 / total_;
    return std::exchange(tenths_, tenths) != tenths;
  }
  milliseconds now = pace_.elapsed();
  if (done < total_ && now < next_draw_) return false;
  next_draw_ = now + kRedraw;
  return true;
}

/// What matters most comes first: a narrow terminal cuts the line.
std::string Progress::line(uint64_t done) const {
  return fmt::format("{} %, {} of {}, {}/s, {} left", done * 100 / total_, size_text(done),
                     size_text(total_), size_text(pace_.bytes_per_second(done)),
                     time_text(pace_.left(done)));
}

void Progress::write(const std::string &text) {
  std::string line = fmt::format("{}: {}", title_, text);
  if (is_terminal_) {
    line.resize(std::min(line.size(), room()));
    size_t columns = std::exchange(columns_, line.size());
    line = fmt::format("\r{:<{}}", line, columns);
  } else {
    line += '\n';
  }
  // There is nowhere to report a failure to.
  static_cast<void>(std::fputs(line.c_str(), stderr));
}

std::string size_text(uint64_t bytes) {
  constexpr double kKiB = 1024;
  auto amount = static_cast<double>(bytes);
  if (amount < kKiB) return fmt::format("{} bytes", bytes);
  if (amount < kKiB * kKiB) return fmt::format("{:.1f} KiB", amount / kKiB);
  return fmt::format("{:.1f} MiB", amount / kKiB / kKiB);
}

std::string time_text(seconds time) {
  auto count = static_cast<uint32_t>(time.count());
  catalog::Field field{
      .name = "", .offset = 0, .width = sizeof count, .kind = catalog::FieldKind::kDuration};
  return form_of(field.kind).text(field, {reinterpret_cast<const uint8_t *>(&count), sizeof count});
}

}  // namespace olt::cli
