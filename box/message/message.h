/// Requests, replies, and the rows of the table that says who handles which message.
#ifndef OLT_BOX_MESSAGE_MESSAGE_H
#define OLT_BOX_MESSAGE_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "box/wire/status.h"

namespace olt::box {

inline constexpr uint32_t kMainModule = 2;
inline constexpr uint32_t kOamModule = 18;
inline constexpr uint32_t kLogModule = 22;
inline constexpr uint32_t kRstpModule = 23;
inline constexpr uint32_t kModules[] = {kMainModule, kOamModule, kLogModule, kRstpModule};

/// Thrown on access behind the end of a request.
class BadLength : public std::exception {
 public:
  const char *what() const noexcept override { return "request too short"; }
};

/// Reads little-endian fields of a request. Every access is checked: BadLength.
class Request {
 public:
  explicit Request(std::span<const uint8_t> data) : data_(data) {}

  size_t size() const { return data_.size(); }
  uint16_t u16(size_t offset) const;
  uint32_t u32(size_t offset) const;
  std::span<const uint8_t> bytes(size_t offset, size_t count) const;
  /// The zero-terminated text in a field of so many bytes; nothing when no zero ends it.
  std::optional<std::string> text(size_t offset, size_t field) const;

 private:
  std::span<const uint8_t> data_;
};

/// Builds a reply; it grows, filled with zeros, to hold what is written.
class Reply {
 public:
  void u16(size_t offset, uint16_t value);
  void u32(size_t offset, uint32_t value);
  void bytes(size_t offset, std::span<const uint8_t> data);
  /// A text cut to fit its zero into the field.
  void text(size_t offset, size_t field, std::string_view value);

  std::vector<uint8_t> take() { return std::move(data_); }

 private:
  void reach(size_t end);

  std::vector<uint8_t> data_;
};

using Handler = std::function<Status(const Request &, Reply &)>;

/// A handler that is a member function of its family, and takes what it needs.
template <typename F>
Handler on(F *family, Status (F::*method)(const Request &, Reply &)) {
  return [=](const Request &request, Reply &reply) { return (family->*method)(request, reply); };
}

template <typename F>
Handler on(F *family, Status (F::*method)(Reply &)) {
  return [=](const Request &, Reply &reply) { return (family->*method)(reply); };
}

template <typename F>
Handler on(F *family, Status (F::*method)()) {
  return [=](const Request &, Reply &) { return (family->*method)(); };
}

struct Lengths {
  size_t least;
  size_t most;
};

constexpr Lengths exactly(size_t length) {
  return {length, length};
}

struct ByteRange {
  size_t begin = 0;
  size_t end = 0;
};

/// One message type at one module.
struct Message {
  uint32_t module;
  uint32_t type;
  std::string_view name;  ///< in traces
  Lengths request;
  Handler handler;
  ByteRange secret = {};  ///< bytes of request and reply that no trace shows
};

/// What becomes of a request.
struct Answer {
  enum class Action { kSend, kWithhold, kDisconnect };

  uint16_t status = 0;
  std::vector<uint8_t> reply;
  Action action = Action::kSend;
  uint32_t delay_ms = 0;
};

}  // namespace olt::box

#endif
