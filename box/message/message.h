/// Requests, replies, and the messages that a family handles.
#ifndef OLT_BOX_MESSAGE_MESSAGE_H
#define OLT_BOX_MESSAGE_MESSAGE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "box/wire/records.h"
#include "box/wire/status.h"

namespace olt::box {

inline constexpr uint32_t kMainModule = 2;
inline constexpr uint32_t kOamModule = 18;
inline constexpr uint32_t kLogModule = 22;
inline constexpr uint32_t kRstpModule = 23;
inline constexpr uint32_t kModules[] = {kMainModule, kOamModule, kLogModule, kRstpModule};

/// Longest reply, in bytes: the platform sends no longer one.
inline constexpr size_t kMaxReply = 65'535;

/// The bytes of a record, as they are sent.
template <typename Record>
std::span<const uint8_t> bytes_of(const Record &record) {
  static_assert(std::has_unique_object_representations_v<Record>, "has padding");
  return {reinterpret_cast<const uint8_t *>(&record), sizeof record};
}

template <typename Record>
std::span<uint8_t> bytes_of(Record &record) {
  static_assert(std::has_unique_object_representations_v<Record>, "has padding");
  return {reinterpret_cast<uint8_t *>(&record), sizeof record};
}

/// Copies a text into a field and fills it with zeros; a text too long is cut off.
template <size_t size>
void set_text(char (&field)[size], std::string_view text) {
  std::fill(std::copy_n(text.begin(), std::min(size, text.size()), field), std::end(field), '\0');
}

/// The text in a field, up to its zero or the field's end.
template <size_t size>
std::string text_of(const char (&field)[size]) {
  return {field, std::find(field, std::end(field), '\0')};
}

/// The text in a field; nothing if it does not end with a zero.
template <size_t size>
std::optional<std::string> terminated_text_of(const char (&field)[size]) {
  std::string text = text_of(field);
  return text.size() < size ? std::optional(text) : std::nullopt;
}

/// Copies as many bytes into a field as fit.
template <typename Field>
void set_bytes(Field &field, std::span<const uint8_t> bytes) {
  std::copy_n(bytes.begin(), std::min(sizeof field, bytes.size()), bytes_of(field).begin());
}

/// Thrown on access beyond the end of a request.
class BadLength : public std::exception {
 public:
  const char *what() const noexcept override { return "request too short"; }
};

/// Reads a request. Access beyond its end throws BadLength.
class Request {
 public:
  explicit Request(std::span<const uint8_t> data) : data_(data) {}

  std::span<const uint8_t> bytes(size_t offset, size_t count) const;

  /// A copy of the record at the offset.
  template <typename Record>
  Record record(size_t offset = 0) const {
    Record record;
    auto from = bytes(offset, sizeof record);
    std::memcpy(&record, from.data(), sizeof record);
    return record;
  }
  uint32_t word(size_t offset = 0) const { return record<uint32_t>(offset); }

  /// All records from the offset to the end of the request. Throws BadLength if the last one is
  /// incomplete.
  template <typename Record>
  std::vector<Record> records(size_t offset) const {
    auto from = bytes(offset, data_.size() - std::min(offset, data_.size()));
    if (from.size() % sizeof(Record) != 0) throw BadLength();
    std::vector<Record> records(from.size() / sizeof(Record));
    if (!records.empty()) std::memcpy(records.data(), from.data(), from.size());
    return records;
  }

  size_t size() const { return data_.size(); }

 private:
  std::span<const uint8_t> data_;
};

/// Builds a reply, which grows as needed; gaps are zero.
class Reply {
 public:
  void bytes(size_t offset, std::span<const uint8_t> data);
  /// Adds bytes at the end.
  void append(std::span<const uint8_t> data) { bytes(data_.size(), data); }

  /// Writes a record at the start.
  template <typename Record>
  void record(const Record &record) {
    bytes(0, bytes_of(record));
  }

  std::vector<uint8_t> take() { return std::move(data_); }

 private:
  std::vector<uint8_t> data_;
};

using Handler = std::function<Status(const Request &, Reply &)>;

/// A handler that calls a member function of its family, with those of the handler's arguments that
/// the function takes, found by their types.
template <typename F, typename Result, typename... Needed>
auto on(F *family, Result (F::*method)(Needed...)) {
  return [=](auto &&...arguments) {
    std::tuple<decltype(arguments)...> all(arguments...);
    return (family->*method)(std::get<Needed>(all)...);
  };
}

template <typename F, typename Result, typename... Needed>
auto on(const F *family, Result (F::*method)(Needed...) const) {
  return [=](auto &&...arguments) {
    std::tuple<decltype(arguments)...> all(arguments...);
    return (family->*method)(std::get<Needed>(all)...);
  };
}

struct Lengths {
  size_t min;
  size_t max;
};

constexpr Lengths exactly(size_t length) {
  return {length, length};
}

struct ByteRange {
  size_t begin = 0;
  size_t end = 0;
};

constexpr ByteRange from_byte(size_t begin) {
  return {begin, SIZE_MAX};
}

inline constexpr ByteRange kAllBytes = from_byte(0);

/// What traces hide of an exchange.
struct SecretBytes {
  bool any() const { return request.end > 0 || reply.end > 0; }

  ByteRange request;
  ByteRange reply;
};

/// One message type at one module.
struct Message {
  uint32_t module;
  uint32_t type;
  std::string_view name;  ///< in traces
  Lengths request;
  Handler handler;
  SecretBytes secret = {};
};

/// The answer to a request.
struct Answer {
  enum class Action { kSend, kWithhold, kDisconnect };

  uint16_t status = 0;
  std::vector<uint8_t> reply;
  Action action = Action::kSend;
  uint32_t delay_ms = 0;
};

}  // namespace olt::box

#endif
