#include "replay/listing_files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "capture/exchanges.h"
#include "catalog/message_fields.h"
#include "catalog/senders.h"
#include "cli/text/file.h"

namespace olt::replay {

using capture::Packet;
using catalog::Field;
using catalog::FieldKind;
using catalog::Operation;

namespace {

constexpr size_t kMaxTotal = 64 << 20;
constexpr size_t kMaxWritten = 1024;

template <typename... Args>
[[noreturn]] void fail(fmt::format_string<Args...> line, Args &&...args) {
  throw ListingFiles::Unavailable(fmt::format(line, std::forward<Args>(args)...));
}

/// The field of the reply that names a listing; nothing when none does.
std::optional<Field> name_field(const Packet &request, const Packet &answer,
                                const catalog::Layout &layout) {
  std::vector<const Operation *> operations = senders_of({.module = request.module,
                                                          .message_type = request.message_type,
                                                          .bytes = request.record,
                                                          .length = request.record_length},
                                                         layout);
  for (const Operation *operation : operations) {
    for (const catalog::MessageField &placed : fields_of(*operation, operation->reply)) {
      const Field &field = placed.field;
      bool is_whole = field.offset + field.width <= answer.record.size();
      if (field.kind == FieldKind::kListing && is_whole) return field;
    }
  }
  return std::nullopt;
}

/// Whether a file of that name may be put into the run directory: it is not one of a server's own.
bool is_usable(const std::string &name) {
  return !name.empty() && name[0] != '.' && !name.starts_with("module-");
}

}  // namespace

ListingFiles::ListingFiles(const std::filesystem::path &kept, const std::filesystem::path &run_dir,
                           std::optional<gid_t> group, const catalog::Layout &layout)
    : kept_(kept), run_dir_(std::filesystem::absolute(run_dir)), group_(group), layout_(layout) {
  std::error_code error;
  if (!std::filesystem::is_directory(kept, error)) {
    throw BadInput(fmt::format("--files {}: is no directory; expected that of OLT_CAPTURE_FILES",
                               printable(kept.string())));
  }
}

ListingFiles::~ListingFiles() {
  for (const Written &file : written_) unlink((run_dir_ / file.name).c_str());
}

void ListingFiles::provide(const Packet &request, Packet &answer) {
  std::optional<Field> field = name_field(request, answer, layout_);
  if (!field) return;
  auto place = answer.record.begin() + static_cast<ptrdiff_t>(field->offset);
  std::string recorded = text_in(ByteView(answer.record).subspan(field->offset, field->width));
  if (recorded.empty()) return;
  std::string name = recorded.substr(recorded.find_last_of('/') + 1);
  if (!is_usable(name)) fail("{}: expected the name of a listing", printable(recorded));
  std::string served = recorded[0] == '/' ? (run_dir_ / name).string() : name;
  if (served.size() > field->width) {
    fail("{}: has {} bytes; expected at most {}: a shorter run directory", printable(served),
         served.size(), field->width);
  }
  std::filesystem::path kept = kept_ / capture::kept_listing_name(request);
  std::error_code error;
  if (std::filesystem::exists(kept, error) && !std::filesystem::is_regular_file(kept, error))
    fail("{}: is no regular file; expected a kept listing", printable(kept.string()));
  std::string content = cli::read_file(kept, capture::kMaxKeptListing, error);
  if (error) fail("{}: cannot be read: {}", printable(kept.string()), error.message());
  write(name, content);
  std::fill_n(place, field->width, uint8_t{0});
  std::copy(served.begin(), served.end(), place);
}

/// Files of others are left alone.
void ListingFiles::write(const std::string &name, const std::string &content) {
  std::string path = run_dir_ / name;
  auto old = std::find_if(written_.begin(), written_.end(),
                          [&name](const Written &file) { return file.name == name; });
  if (old != written_.end()) remove(old);
  while (written_.size() == kMaxWritten || (total_ > 0 && total_ + content.size() > kMaxTotal))
    remove(written_.begin());
  Descriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!file.is_open()) fail("{}: cannot be created: {}", printable(path), std::strerror(errno));
  errno = ENOSPC;  // when only a part is written
  bool is_whole =
      ::write(file.get(), content.data(), content.size()) == static_cast<ssize_t>(content.size());
  bool is_shared = !group_ || (fchown(file.get(), static_cast<uid_t>(-1), *group_) == 0 &&
                               fchmod(file.get(), S_IRUSR | S_IWUSR | S_IRGRP) == 0);
  if (!is_whole || !is_shared) {
    int error = errno;
    unlink(path.c_str());
    fail("{}: cannot be written: {}", printable(path), std::strerror(error));
  }
  written_.push_back({name, content.size()});
  total_ += content.size();
}

void ListingFiles::remove(const std::deque<Written>::const_iterator &file) {
  unlink((run_dir_ / file->name).c_str());
  total_ -= file->length;
  written_.erase(file);
}

}  // namespace olt::replay
