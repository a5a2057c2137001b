#include "box/watch/configuration_transfer.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "base/bad_input.h"
#include "box/state/json_form.h"

namespace olt::box {

namespace {

/// Fits into a reply even if each of its bytes takes two in JSON.
constexpr size_t kPiece = 32'000;
constexpr uint32_t kMaxLength = 64 << 20;
/// Bytes of the reasons that a reply holds.
constexpr size_t kMaxReasons = 16'000;

uint32_t offset_in(Archive &command) {
  uint32_t offset = 0;
  command.number("offset", offset, {0, kMaxLength});
  return offset;
}

/// Assigning an empty text would keep the memory.
void release(std::string &text) {
  std::string().swap(text);
}

/// Throws BadInput unless the command continues the transfer with this number.
void require_number(Archive &command, std::string_view key, uint32_t number) {
  uint32_t asked = 0;
  command.number(key, asked);
  if (asked == number) return;
  throw BadInput(
      fmt::format("/{}: {} has ended, as another client began one; expected to begin again at"
                  " offset 0",
                  key, asked));
}

}  // namespace

void ConfigurationTransfer::begin_export(Archive &command, size_t offset) {
  if (offset != 0) return require_number(command, "export", export_.number);
  bool shows_secrets = false;
  command.flag("secrets", shows_secrets);
  command.finish();
  std::string text =
      to_json_text(access_.read(), shows_secrets ? Secrets::kShown : Secrets::kMasked);
  if (text.size() > kMaxLength) {
    throw BadInput(fmt::format("the configuration has {} bytes as text; expected at most {}",
                               text.size(), kMaxLength));
  }
  export_.text = std::move(text);
  ++export_.number;
}

void ConfigurationTransfer::send(Archive &command, Archive &reply) {
  size_t offset = offset_in(command);
  begin_export(command, offset);
  if (offset != 0) command.finish();
  if (offset >= export_.text.size()) {
    throw BadInput(fmt::format("/offset: is {}; expected at most {}", offset,
                               std::max<size_t>(export_.text.size(), 1) - 1));
  }
  std::string piece = export_.text.substr(offset, kPiece);
  auto length = static_cast<uint32_t>(export_.text.size());
  reply.number("export", export_.number);
  reply.number("length", length);
  reply.text("piece", piece, kPiece);
  if (offset + piece.size() == length) release(export_.text);
}

void ConfigurationTransfer::begin_import(Archive &command, size_t offset) {
  if (offset != 0) return require_number(command, "import", import_.number);
  bool adopts = false;
  uint32_t length = 0;
  command.number("length", length, {1, kMaxLength});
  command.flag("adopt", adopts);
  import_length_ = length;
  misfits_ = adopts ? Misfits::kLeaveOut : Misfits::kRefuse;
  release(import_.text);
  ++import_.number;
}

void ConfigurationTransfer::receive(Archive &command, Archive &reply) {
  size_t offset = offset_in(command);
  begin_import(command, offset);
  std::string piece;
  command.text("piece", piece, kMaxLength);
  command.finish();
  if (offset != import_.text.size() || piece.size() > import_length_ - offset) {
    throw BadInput(fmt::format("/offset: is {} for {} bytes; expected {} and at most {} bytes",
                               offset, piece.size(), import_.text.size(),
                               import_length_ - import_.text.size()));
  }
  import_.text += piece;
  reply.number("import", import_.number);
  if (import_.text.size() == import_length_) finish_import(reply);
}

void ConfigurationTransfer::finish_import(Archive &reply) {
  std::string text = std::exchange(import_.text, {});
  std::vector<std::string> left_out = access_.take(text, misfits_);
  auto count = static_cast<uint32_t>(left_out.size());
  reply.number("left_out_count", count);
  size_t length = 0;
  auto end = std::find_if(left_out.begin(), left_out.end(), [&](const std::string &reason) {
    length += reason.size();
    return length > kMaxReasons;
  });
  left_out.erase(end, left_out.end());
  reply.list("left_out", left_out, SIZE_MAX,
             [&](std::string &reason) { reply.text("reason", reason, SIZE_MAX); });
}

}  // namespace olt::box
