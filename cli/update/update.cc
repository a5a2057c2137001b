#include "cli/update/update.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

#include "cli/call/result_text.h"
#include "cli/text/field_forms.h"
#include "cli/text/progress.h"

namespace olt::cli {

using catalog::Field;
using catalog::ImagePieces;
using catalog::Layout;
using catalog::Operation;
using catalog::Role;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr uint32_t kWord = sizeof(uint32_t);
constexpr const char *kFailure = "the box reports that the update has failed";
constexpr milliseconds kPollPause(500);
constexpr milliseconds kSignalPause(20);

constexpr UpdateTarget kTargets[] = {
    {"olt", "do_handle_epon_updatestream", "get_card_updatestatus", "olt_update",
     &Layout::olt_update},
    {"onu", "do_handle_epon_updatestream_onu", nullptr, "onu_update", &Layout::onu_update},
};

const ImagePieces &pieces_of(const UpdateTarget &target, const Layout &layout) {
  if (const auto &pieces = (layout.*target.pieces)()) return *pieces;
  wrong_usage(
      "update {}: the layout {} does not say what a piece is; expected '{}' in it, or the"
      " layout box",
      target.name, layout.name(), target.member);
}

/// Nothing when the bytes end before it.
std::optional<uint32_t> word_at(ByteView bytes, uint32_t offset) {
  if (bytes.size() < offset + kWord) return std::nullopt;
  uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, kWord);
  return word;
}

void set_word(Bytes &bytes, uint32_t offset, uint32_t word) {
  std::memcpy(bytes.data() + offset, &word, kWord);
}

/// Whether the field of a piece can be given: it is in the head, and nothing else sets it. Secrets
/// would be kept in the shell's history.
bool is_settable(const Field &field, const ImagePieces &pieces) {
  auto holds_word = [&field](uint32_t offset) {
    return field.offset < offset + kWord && offset < field.offset + field.width;
  };
  return field.width != Field::kToTheEnd && field.offset + field.width <= pieces.head_size &&
         field.role != Role::kReserved && !field.secret && !holds_word(pieces.length_offset) &&
         !holds_word(pieces.position_offset);
}

void pause(milliseconds time, const DeferredEnd &end) {
  auto over = steady_clock::now() + time;
  while (!end.is_due() && steady_clock::now() < over) std::this_thread::sleep_for(kSignalPause);
}

}  // namespace

std::span<const UpdateTarget> update_targets() {
  return kTargets;
}

Update::Update(const UpdateTarget &target, const Layout &layout, const std::string &path,
               std::span<const std::string> fields)
    : target_(target),
      layout_(layout),
      pieces_(pieces_of(target, layout)),
      image_(path, pieces_.max_size),
      head_(pieces_.head_size) {
  for (const std::string &word : fields) set_field(word);
  set_word(head_, pieces_.length_offset, image_.size());
}

void Update::set_field(const std::string &word) {
  size_t end = std::min(word.find('='), word.size());
  std::string name = word.substr(0, end);
  std::string names;
  for (const Field &field : layout_.find(target_.stream)->arguments()[0].fields) {
    if (!is_settable(field, pieces_)) continue;
    names += fmt::format("{}{}=VALUE", names.empty() ? "" : ", ", field.name);
    if (field.name != name || end == word.size()) continue;
    try {
      Bytes bytes = parse_field(field, std::string_view(word).substr(end + 1));
      std::copy(bytes.begin(), bytes.end(), head_.data() + field.offset);
      return;
    } catch (const BadValue &bad) {
      wrong_usage("update {}: {}: {}; expected {}", target_.name, name, bad.what(),
                  form_of(field.kind).expected(field));
    }
  }
  wrong_usage("update {}: '{}' given; expected {} after the file", target_.name, printable(word),
              names.empty() ? "nothing" : names);
}

void Update::run(const Access &box, UpdateDisplay &display, milliseconds patience) {
  DeferredEnd end;
  while (sent_ < image_.size()) {
    if (end.is_due()) interrupt();
    send_piece(box);
    display.sent(sent_);
  }
  if (target_.status != nullptr) follow(box, display, end, patience);
  if (end.is_due()) interrupt();
}

/// Sends the next piece. The head and the bytes of the image are one request.
void Update::send_piece(const Access &box) {
  uint32_t length = std::min(pieces_.piece_size, image_.size() - sent_);
  Bytes piece(head_.size() + length);
  set_word(head_, pieces_.position_offset, sent_);
  std::copy(head_.begin(), head_.end(), piece.begin());
  try {
    image_.read(sent_, std::span(piece).subspan(head_.size()));
  } catch (const Error &error) {
    stop(error.what());
  }
  Call call(*layout_.find(target_.stream));
  call.set_stream(0, std::move(piece));
  int32_t result = call.make();
  if (result != 0) {
    stop(fmt::format("the piece at byte {} failed: {}", sent_,
                     describe_result(call.operation(), result, call.reason(result), layout_)),
         box.advice(call.reason(result)));
  }
  sent_ += length;
  std::optional<uint32_t> progress = word_at(call.bytes(1), pieces_.progress_offset);
  if (progress == pieces_.failed) stop(kFailure);
  bool is_end = sent_ == image_.size() && target_.status == nullptr;
  if (is_end && progress != pieces_.complete) {
    stop("the answer to the last piece does not say that the update is complete");
  }
}

/// Reads the progress until the update is complete.
void Update::follow(const Access &box, UpdateDisplay &display, const DeferredEnd &end,
                    milliseconds patience) {
  const Operation &operation = *layout_.find(target_.status);
  std::optional<uint32_t> last;
  auto changed = steady_clock::now();
  while (true) {
    if (end.is_due()) interrupt();
    Call call(operation);
    int32_t result = call.make();
    if (result != 0) {
      stop(fmt::format("{} failed: {}", operation.name,
                       describe_result(operation, result, call.reason(result), layout_)),
           box.advice(call.reason(result)));
    }
    uint32_t progress = *word_at(call.bytes(0), 0);
    if (progress == pieces_.complete) return;
    if (progress == pieces_.failed) stop(kFailure);
    NamedValue shown{operation.arguments()[0].whole(), {}, false};
    shown.bytes.assign(call.bytes(0).begin(), call.bytes(0).end());
    if (std::exchange(last, progress) != progress) {
      changed = steady_clock::now();
      display.writing(shown);
    }
    if (steady_clock::now() - changed > patience) {
      stop(fmt::format("no progress for {}, the update stays at {}",
                       time_text(std::chrono::duration_cast<std::chrono::seconds>(patience)),
                       shown.text()));
    }
    pause(kPollPause, end);
  }
}

void Update::stop(const std::string &why, const std::string &advice) const {
  fail("update {}: {}; {}{}", target_.name, why, state(), advice);
}

void Update::interrupt() const {
  throw Interrupted(kFailed, fmt::format("update {}: interrupted; {}", target_.name, state()));
}

/// How the box is left.
std::string Update::state() const {
  if (sent_ < image_.size()) {
    return fmt::format(
        "the box has confirmed {} of {} bytes; the next update starts from the beginning", sent_,
        image_.size());
  }
  std::string text = "the box has confirmed the whole image";
  if (target_.status != nullptr) {
    text += fmt::format("; {} says how the update goes on", target_.status);
  }
  return text;
}

}  // namespace olt::cli
