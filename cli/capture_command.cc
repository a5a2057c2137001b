#include "cli/capture_command.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

#include "base/descriptor.h"
#include "base/text.h"
#include "capture/writer.h"
#include "catalog/catalog.h"
#include "cli/box/control_client.h"
#include "cli/box/end_signals.h"
#include "cli/commands.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/number_text.h"

namespace olt::cli {

namespace {

using std::chrono::steady_clock;

constexpr const char *kStandardOutput = "-";
constexpr const char *kOperationFilter = "operation";
constexpr const char *kModuleFilter = "module";
constexpr std::string_view kCountOption = "--count";
constexpr std::string_view kSecondsOption = "--seconds";
constexpr CommandOption kCaptureOptions[] = {{kCountOption, "N", "ends after so many exchanges"},
                                             {kSecondsOption, "S", "ends after so many seconds"}};
constexpr uint32_t kMostSeconds = 86'400;
/// Between two looks at a capture that had nothing new.
constexpr std::chrono::milliseconds kBetweenPieces(50);

struct CapturePlan {
  std::string path;
  WantedExchanges wanted;
  std::optional<uint32_t> seconds;
};

/// Where whole blocks of a capture go.
class BlockOutput {
 public:
  /// Throws Error, when the file exists, too.
  BlockOutput(const std::string &path, std::vector<catalog::WireSecret> secrets)
      : path_(path), secrets_(std::move(secrets)) {
    if (path == kStandardOutput) {
      if (isatty(STDOUT_FILENO) == 1)
        wrong_usage("capture: standard output is a terminal; expected a pipe or a file");
      return;
    }
    file_ =
        Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file_.is_open()) return;
    if (errno == EEXIST) fail("capture: {} exists; expected a name that is free", printable(path));
    fail("capture: cannot write {}: {}", printable(path), std::strerror(errno));
  }

  /// Writes those that are complete; the rest waits for more.
  void add(ByteView bytes) {
    waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
    size_t whole = 0;
    uint32_t length = 0;
    while (waiting_.size() - whole >= 8) {
      std::memcpy(&length, &waiting_[whole + 4], sizeof length);
      if (length < 12 || length > waiting_.size() - whole) break;
      capture::mask_block(std::span(waiting_).subspan(whole, length), secrets_);
      whole += length;
    }
    write(ByteView(waiting_).first(whole));
    waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<ptrdiff_t>(whole));
  }

 private:
  void write(ByteView bytes) {
    int to = file_.is_open() ? file_.get() : STDOUT_FILENO;
    for (size_t done = 0; done < bytes.size();) {
      ssize_t count = ::write(to, bytes.data() + done, bytes.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) refuse(errno);
      done += static_cast<size_t>(count);
    }
    written_ += static_cast<off_t>(bytes.size());
  }

  [[noreturn]] void refuse(int error) {
    if (!file_.is_open() && error == EPIPE) throw ReaderGone();
    if (file_.is_open() && ftruncate(file_.get(), written_) != 0) error = errno;
    fail("capture: cannot write {}: {}",
         file_.is_open() ? printable(path_) : std::string("the output"), std::strerror(error));
  }

  const std::string path_;
  const std::vector<catalog::WireSecret> secrets_;  ///< to be masked here, too
  Descriptor file_;                                 ///< closed: standard output
  off_t written_ = 0;
  Bytes waiting_;
};

void set_number(uint32_t &number, std::string_view name, const std::string &value, uint32_t min,
                uint32_t max) {
  std::optional<uint32_t> given = number_in(value, max);
  if (!given || *given < min) {
    wrong_usage("capture: {}: '{}' given; expected a number from {} to {}", name, printable(value),
                min, max);
  }
  number = *given;
}

/// Exchanges that the operation may have made: those with its message type.
void set_operation(WantedExchanges &wanted, const std::string &name,
                   const catalog::Layout &layout) {
  const catalog::Address &address = operation_named(name, layout).address;
  if (!address.sends())
    wrong_usage("capture: {} makes no exchange; expected an operation that does", name);
  wanted.type = address.message_type;
}

void set_option(CapturePlan &plan, std::string_view name, const std::string &value) {
  if (name == kCountOption) {
    set_number(plan.wanted.count, name, value, 1, UINT32_MAX);
  } else {
    set_number(plan.seconds.emplace(), name, value, 1, kMostSeconds);
  }
}

void set_filter(CapturePlan &plan, const std::string &word, const catalog::Layout &layout) {
  size_t equals = std::min(word.find('='), word.size());
  std::string name = word.substr(0, equals);
  std::string value = word.substr(std::min(equals + 1, word.size()));
  if (name == kModuleFilter) {
    set_number(plan.wanted.module, name, value, 1, UINT32_MAX);
  } else if (name == kOperationFilter) {
    set_operation(plan.wanted, value, layout);
  } else {
    wrong_usage("capture: '{}' given; expected {}=NAME, {}=N, {} N or {} S", printable(name),
                kOperationFilter, kModuleFilter, kCountOption, kSecondsOption);
  }
}

CapturePlan plan_of(std::span<const std::string> words, const catalog::Layout &layout) {
  CapturePlan plan;
  auto set = [&plan](std::string_view name, const std::string &value) {
    set_option(plan, name, value);
  };
  std::vector<std::string> others = take_options("capture", kCaptureOptions, words.subspan(1), set);
  if (others.empty()) wrong_usage("capture: no file is given; expected one, or - for a pipe");
  plan.path = others[0];
  for (size_t i = 1; i < others.size(); ++i) set_filter(plan, others[i], layout);
  const char *secrets = std::getenv("OLT_CAPTURE_SECRETS");
  plan.wanted.with_secrets = secrets != nullptr && std::string_view(secrets) == "1";
  return plan;
}

/// Reads the capture until it ends, which it does soon after the signal or the time.
CapturePiece read_to_end(const CapturePlan &plan, BlockOutput &output) {
  DeferredEnd end;
  uint32_t number = start_capture(plan.wanted);
  auto over = steady_clock::now() + std::chrono::seconds(plan.seconds.value_or(0));
  for (bool stops = false;;) {
    CapturePiece piece = read_capture_piece(number);
    output.add(piece.bytes);
    if (piece.is_last) return piece;
    bool is_due = end.is_due() || (plan.seconds && steady_clock::now() >= over);
    if (is_due && !stops) {
      stop_capture(number);
      stops = true;
    } else if (piece.bytes.empty()) {
      std::this_thread::sleep_for(kBetweenPieces);
    }
  }
}

}  // namespace

void run_capture(Session &session, std::span<const std::string> words) {
  CapturePlan plan = plan_of(words, session.layout());
  if (session.box().is_embedded()) {
    wrong_usage("capture: the embedded box serves this oltctl alone; expected --box DIR");
  }
  session.box().require_box();
  std::vector<catalog::WireSecret> secrets;
  if (!plan.wanted.with_secrets) secrets = catalog::wire_secrets(session.layout().families());
  BlockOutput output(plan.path, std::move(secrets));
  CapturePiece last = read_to_end(plan, output);
  fmt::print(stderr, "capture: {}, {} lost\n", counted(last.exchanges, "exchange"), last.lost);
}

std::vector<std::string> words_of_capture(std::span<const std::string> words) {
  if (words.size() == 1) return {kAnyFile};
  std::vector<std::string> names = {fmt::format("{}=", kModuleFilter)};
  for (const catalog::Family &family : catalog::families()) {
    for (const catalog::Operation &operation : family.operations) {
      if (operation.address.sends())
        names.push_back(fmt::format("{}={}", kOperationFilter, operation.name));
    }
  }
  return names;
}

std::string details_of_capture() {
  return "  Records the exchanges of all clients of a running box until Ctrl-C. operation=NAME\n"
         "  records those with the operation's message type, module=N those with this module.\n"
         "  FILE must not exist; - is standard output. OLT_CAPTURE_SECRETS=1 keeps secrets.\n" +
         options_text(kCaptureOptions) + "  Example: capture - | tshark -i -\n";
}

std::span<const CommandOption> options_of_capture() {
  return kCaptureOptions;
}

}  // namespace olt::cli
