#include "box/state/archive.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/bad_input.h"
#include "base/text.h"

namespace olt::box {

using Kind = CborReader::Kind;

namespace {

constexpr size_t kShownValue = 40;
/// More than any object has whose members are described one by one.
constexpr size_t kMaxMembers = 256;
/// In milliseconds since 1970.
constexpr NumberRange kMoments = {0, uint64_t{UINT32_MAX} * 1000};

constexpr std::string_view kSecretMembers[] = {
    "password",        // of users and authentication entries
    "snmp_param",      // the communities are in it
    "user_account",    // of voice lines
    "sip",             // settings of the voice service
    "wan_connection",  // the user of the connection is in it
    "piece",           // of a configuration on its way
};

std::string shown(const CborReader::Value &value) {
  std::string text;
  switch (value.kind) {
    case Kind::kNumber:
      return fmt::to_string(value.number);
    case Kind::kFlag:
      return value.number != 0 ? "true" : "false";
    case Kind::kText:
      text = fmt::format("\"{}\"", printable_ascii(value.data));
      break;
    case Kind::kBytes:
      text = to_hex(as_bytes(value.data));
      break;
    case Kind::kList:
      return "an array";
    case Kind::kMap:
    case Kind::kEnd:
      return "an object";
  }
  return text.size() <= kShownValue ? text : text.substr(0, kShownValue) + "...";
}

/// The bytes that a value stands for: as they are, or those that it has in hex, from JSON, which
/// the storage then holds.
std::optional<ByteView> bytes_in(const CborReader::Value &value, Bytes &storage) {
  if (value.kind == Kind::kBytes) return as_bytes(value.data);
  auto bytes = value.kind == Kind::kText ? from_hex(value.data) : std::nullopt;
  if (!bytes) return std::nullopt;
  storage = std::move(*bytes);
  return storage;
}

}  // namespace

bool is_secret_member(std::string_view key) {
  return std::find(std::begin(kSecretMembers), std::end(kSecretMembers), key) !=
         std::end(kSecretMembers);
}

std::string pointer_part(std::string_view key) {
  std::string text;
  for (char c : key) text += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
  return printable_ascii(text);
}

Archive::Archive() : mode_(Writing()) {
  out().begin_map();
}

Archive::Archive(std::string_view data) : mode_(Reading{data, {}}) {
  CborReader reader(data);
  enter("", reader);
  if (!reader.at_end()) throw BadInput("data follows its end");
}

void Archive::wide_number(std::string_view key, uint64_t &value, NumberRange range) {
  if (!is_reading()) {
    out().text(key);
    out().number(value);
    return;
  }
  CborReader::Value found = value_of(key).next();
  if (found.kind != Kind::kNumber || found.number < range.min || found.number > range.max) {
    refuse(key, fmt::format("an integer from {} to {}", range.min, range.max));
  }
  value = found.number;
}

void Archive::flag(std::string_view key, bool &value) {
  if (!is_reading()) {
    out().text(key);
    out().flag(value);
    return;
  }
  CborReader::Value found = value_of(key).next();
  if (found.kind != Kind::kFlag) refuse(key, "true or false");
  value = found.number != 0;
}

void Archive::text(std::string_view key, std::string &value, size_t max) {
  if (!is_reading()) {
    out().text(key);
    if (is_secret_member(key)) out().secret();
    out().text(bytes_to_utf8(value));
    return;
  }
  CborReader::Value found = value_of(key).next();
  // JSON does not mark secrets, so one that is marked may look like the mask.
  bool is_masked = is_secret_member(key) && !found.is_secret && found.data == kMask;
  auto bytes = found.kind == Kind::kText ? utf8_to_bytes(found.data) : std::nullopt;
  if (!bytes || bytes->size() > max || is_masked) {
    refuse(key, fmt::format("a text of at most {} bytes", max));
  }
  value = std::move(*bytes);
}

void Archive::bytes(std::string_view key, std::span<uint8_t> field) {
  if (!is_reading()) {
    out().text(key);
    if (is_secret_member(key)) out().secret();
    out().bytes(field);
    return;
  }
  Bytes storage;
  auto bytes = bytes_in(value_of(key).next(), storage);
  if (!bytes || bytes->size() != field.size()) {
    refuse(key, fmt::format("{} bytes in hex", field.size()));
  }
  std::copy(bytes->begin(), bytes->end(), field.begin());
}

void Archive::moment(std::string_view key, TimePoint &value) {
  using std::chrono::milliseconds;
  auto count = std::chrono::floor<milliseconds>(value.time_since_epoch()).count();
  auto wide = static_cast<uint64_t>(std::max<int64_t>(count, 0));
  wide_number(key, wide, kMoments);
  if (is_reading()) value = TimePoint(milliseconds(wide));
}

void Archive::object(std::string_view key, const std::function<void()> &describe) {
  if (!is_reading()) {
    out().text(key);
    element(describe);
    return;
  }
  CborReader reader = value_of(key);
  enter(place_of(key), reader);
  describe();
  leave();
}

void Archive::element(const std::function<void()> &describe) {
  out().begin_map();
  describe();
  out().end();
}

void Archive::list(std::string_view key, size_t max, const std::function<void()> &write,
                   const std::function<void()> &read) {
  if (!is_reading()) {
    out().text(key);
    out().begin_list();
    write();
    out().end();
    return;
  }
  CborReader reader = value_of(key);
  CborReader::Value head = reader.next();
  if (head.kind != Kind::kList) refuse(key, "an array");
  std::string place = place_of(key);
  for (size_t i = 0;; ++i) {
    if (CborReader(reader).next().kind == Kind::kEnd) return;
    CborReader next = reader;
    size_t depth = in().scopes.size();
    bool is_read = attempt([&] {
      if (i >= max) {
        throw BadInput(
            fmt::format("{}/{}: is one too many; expected at most {} elements", place, i, max));
      }
      enter(fmt::format("{}/{}", place, i), next);
      read();
      leave();
    });
    in().scopes.resize(depth);
    if (is_read) {
      reader = next;
    } else {
      reader.skip();
    }
  }
}

void Archive::entries(std::string_view key, const std::function<void()> &write,
                      const TakeEntry &take) {
  if (!is_reading()) {
    out().text(key);
    std::get<Writing>(mode_).entries_are_secret = is_secret_member(key);
    element(write);
    return;
  }
  CborReader reader = value_of(key);
  CborReader::Value map = reader.next();
  if (map.kind != Kind::kMap) refuse(key, "an object");
  std::string place = place_of(key);
  Bytes storage;
  for (;;) {
    CborReader::Value name = reader.next();
    if (name.kind == Kind::kEnd) return;
    CborReader::Value value = CborReader(reader).next();
    reader.skip();
    attempt([&] {
      auto entry_place = [&] { return place + '/' + pointer_part(name.data); };
      auto bytes = bytes_in(value, storage);
      if (!bytes) refuse(entry_place(), value, is_secret_member(key), "bytes in hex");
      try {
        take(name.data, *bytes);
      } catch (const BadInput &error) {
        throw BadInput(fmt::format("{}: {}", entry_place(), error.what()));
      }
    });
  }
}

void Archive::entry(std::string_view name, ByteView value) {
  out().text(name);
  if (std::get<Writing>(mode_).entries_are_secret) out().secret();
  out().bytes(value);
}

bool Archive::attempt(const std::function<void()> &read) {
  try {
    read();
    return true;
  } catch (const BadInput &error) {
    if (!adopts_) throw;
    left_out_.emplace_back(error.what());
    return false;
  }
}

bool Archive::has(std::string_view key) {
  return !is_reading() || find(key) != nullptr;
}

bool Archive::is(std::string_view key, std::string_view text) {
  if (!is_reading() || find(key) == nullptr) return false;
  CborReader::Value value = value_of(key).next();
  return value.kind == Kind::kText && value.data == text;
}

std::string Archive::take() {
  out().end();
  return out().take();
}

void Archive::finish() {
  leave();
}

Archive::Member *Archive::find(std::string_view key) {
  Scope &scope = in().scopes.back();
  if (std::find(scope.known.begin(), scope.known.end(), key) == scope.known.end()) {
    scope.known.push_back(key);
  }
  for (Member &member : scope.members) {
    if (member.key != key) continue;
    member.described = true;
    return &member;
  }
  return nullptr;
}

CborReader Archive::value_of(std::string_view key) {
  const Member *member = find(key);
  if (member == nullptr) throw BadInput(place_of(key) + ": is missing");
  return CborReader(in().data, member->at);
}

void Archive::enter(std::string place, CborReader &reader) {
  CborReader::Value map = reader.next();
  if (map.kind != Kind::kMap) refuse(place, map, map.is_secret, "an object");
  Scope scope{std::move(place), {}, {}};
  for (;;) {
    CborReader::Value key = reader.next();
    if (key.kind == Kind::kEnd) break;
    if (key.kind != Kind::kText) {
      throw BadInput(fmt::format("{}: has a member without a name", scope.place));
    }
    if (scope.members.size() == kMaxMembers) {
      throw BadInput(fmt::format("{}: has more members than any object of the box", scope.place));
    }
    for (const Member &member : scope.members) {
      if (member.key != key.data) continue;
      throw BadInput(
          fmt::format("{}/{}: is given twice; expected once", scope.place, pointer_part(key.data)));
    }
    scope.members.push_back({key.data, reader.position()});
    reader.skip();
  }
  in().scopes.push_back(std::move(scope));
}

void Archive::leave() {
  const Scope &scope = in().scopes.back();
  for (const Member &member : scope.members) {
    if (member.described) continue;
    throw BadInput(fmt::format("{}: is unknown; expected one of {}", place_of(member.key),
                               fmt::join(scope.known, ", ")));
  }
  in().scopes.pop_back();
}

std::string Archive::place_of(std::string_view key) {
  return in().scopes.back().place + '/' + pointer_part(key);
}

void Archive::refuse(const std::string &place, const CborReader::Value &value, bool is_secret,
                     std::string_view expected) {
  std::string given = !is_secret            ? shown(value)
                      : value.data == kMask ? "masked"
                                            : "not as it should be";
  throw BadInput(
      fmt::format("{}: is {}; expected {}", place.empty() ? "/" : place, given, expected));
}

void Archive::refuse(std::string_view key, std::string_view expected) {
  refuse(place_of(key), value_of(key).next(), is_secret_member(key), expected);
}

}  // namespace olt::box
