#include "flash_device/faults.h"

#include <errno.h>

namespace olt::flash_device {

namespace {

struct CallName {
  std::string_view name;
  Call call;
};
constexpr CallName kCallNames[] = {{"open", Call::kOpen},     {"lseek", Call::kSeek},
                                   {"ioctl", Call::kControl}, {"read", Call::kRead},
                                   {"write", Call::kWrite},   {"close", Call::kClose}};

struct ErrorName {
  std::string_view name;
  int error;
};
constexpr ErrorName kErrorNames[] = {
    {"EACCES", EACCES}, {"EAGAIN", EAGAIN}, {"EBADF", EBADF},   {"EBADMSG", EBADMSG},
    {"EBUSY", EBUSY},   {"EFAULT", EFAULT}, {"EINTR", EINTR},   {"EINVAL", EINVAL},
    {"EIO", EIO},       {"EMFILE", EMFILE}, {"ENFILE", ENFILE}, {"ENODEV", ENODEV},
    {"ENOENT", ENOENT}, {"ENOMEM", ENOMEM}, {"ENOSPC", ENOSPC}, {"ENOTTY", ENOTTY},
    {"ENXIO", ENXIO},   {"EPERM", EPERM},   {"EROFS", EROFS},   {"ETIMEDOUT", ETIMEDOUT}};

/// Removes everything up to the separator from the text and returns it.
std::string_view take(std::string_view &text, std::string_view separators) {
  size_t length = 0;
  while (length < text.size() && separators.find(text[length]) == std::string_view::npos) ++length;
  std::string_view taken(text.data(), length);
  text.remove_prefix(length < text.size() ? length + 1 : length);
  return taken;
}

bool take_prefix(std::string_view &text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool read_number(std::string_view text, uint32_t &number) {
  if (text.empty() || text.size() > 9) return false;
  number = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    number = number * 10 + static_cast<uint32_t>(c - '0');
  }
  return true;
}

bool read_call(std::string_view text, Call &call) {
  for (const CallName &known : kCallNames) {
    if (known.name == text) {
      call = known.call;
      return true;
    }
  }
  return false;
}

bool read_error(std::string_view text, int &error) {
  for (const ErrorName &known : kErrorNames) {
    if (known.name == text) {
      error = known.error;
      return true;
    }
  }
  return false;
}

bool read_effect(std::string_view text, Fault &fault) {
  if (take_prefix(text, "short=")) {
    return (fault.call == Call::kRead || fault.call == Call::kWrite) &&
           read_number(text, fault.max_bytes);
  }
  return read_error(text, fault.error);
}

bool read_cut(std::string_view text, PowerCut &cut) {
  uint32_t bytes = 0;
  if (!read_number(text, bytes)) return false;
  cut.plan(bytes);
  return true;
}

}  // namespace

std::string_view Faults::plan(std::string_view text) {
  while (!text.empty()) {
    std::string_view word = take(text, " ,");
    if (!word.empty() && !plan_word(word)) return word;
  }
  return {};
}

bool Faults::plan_word(std::string_view word) {
  if (take_prefix(word, "cut=")) return read_cut(word, write_cut);
  if (take_prefix(word, "erase-cut=")) return read_cut(word, erase_cut);
  return plan_call(word);
}

bool Faults::plan_call(std::string_view word) {
  Fault fault{};
  if (count_ == kMax || !read_call(take(word, ":"), fault.call) ||
      !read_number(take(word, ":"), fault.number) || fault.number == 0 ||
      !read_effect(word, fault)) {
    return false;
  }
  planned_[count_++] = fault;
  return true;
}

const Fault *Faults::next(Call call) {
  static constexpr Fault kNoPower{.call = Call::kOpen, .number = 0, .error = EIO, .max_bytes = 0};
  if (write_cut.happened() || erase_cut.happened()) return &kNoPower;
  uint32_t number = ++calls_[static_cast<size_t>(call)];
  for (size_t i = 0; i < count_; ++i) {
    if (planned_[i].call == call && planned_[i].number == number) return &planned_[i];
  }
  return nullptr;
}

}  // namespace olt::flash_device
