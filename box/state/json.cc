#include "box/state/json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <set>

#include "base/bad_input.h"
#include "base/text.h"

namespace olt::box {

namespace {

constexpr size_t kShownValue = 40;

std::string escaped(std::string_view key) {
  std::string text;
  for (char c : key) {
    if (c == '~') {
      text += "~0";
    } else if (c == '/') {
      text += "~1";
    } else {
      text += c;
    }
  }
  return printable_ascii(text);
}

/// Notices keys that stand twice in one object, of which a parser would silently keep one.
class DuplicateCheck {
 public:
  bool operator()(int /*depth*/, Json::parse_event_t event, Json &parsed) {
    if (event == Json::parse_event_t::object_start) {
      objects_.push_back({});
    } else if (event == Json::parse_event_t::object_end) {
      objects_.pop_back();
    } else if (event == Json::parse_event_t::key) {
      enter(parsed.get<std::string>());
    }
    return true;
  }

 private:
  struct Object {
    std::set<std::string> keys;
    std::string current;
  };

  void enter(const std::string &key) {
    Object &object = objects_.back();
    object.current = key;
    if (object.keys.insert(key).second) return;
    std::string place;
    for (const Object &outer : objects_) place += '/' + escaped(outer.current);
    throw BadInput(place + ": is given twice; expected once");
  }

  std::vector<Object> objects_;
};

/// The parser's message without its own prefix: what stands behind the column.
std::string_view reason_of(std::string_view message) {
  size_t column = message.find("column ");
  size_t colon = message.find(": ", column == std::string_view::npos ? 0 : column);
  return colon == std::string_view::npos ? message : message.substr(colon + 2);
}

/// What stands in quotes in the parser's message.
std::string_view quoted_in(std::string_view message) {
  size_t begin = std::min(message.find('\''), message.size() - 1) + 1;
  return message.substr(begin, message.rfind('\'') - begin);
}

/// Where the last character that the parser read stands.
std::string place_in(std::string_view text, size_t characters_read) {
  std::string_view before = text.substr(0, std::max<size_t>(characters_read, 1) - 1);
  auto line = 1 + std::count(before.begin(), before.end(), '\n');
  size_t column = before.size() - (before.rfind('\n') + 1) + 1;
  return fmt::format("{}:{}", line, column);
}

}  // namespace

Json parse_json(std::string_view text) {
  DuplicateCheck check;
  try {
    return Json::parse(text.begin(), text.end(), std::ref(check));
  } catch (const Json::parse_error &error) {
    throw BadInput(place_in(text, error.byte) + ": " + printable_ascii(reason_of(error.what())));
  } catch (const Json::out_of_range &error) {
    std::string_view number = quoted_in(error.what());
    throw BadInput(
        fmt::format("{}: number {} is beyond what any member can hold; expected a smaller one",
                    place_in(text, text.find(number) + number.size()), printable_ascii(number)));
  }
}

void refuse(const std::string &place, const Json &value, std::string_view expected) {
  std::string shown = value.is_structured()
                          ? std::string("an ") + value.type_name()
                          : value.dump(-1, ' ', false, Json::error_handler_t::replace);
  shown = printable_ascii(shown);
  if (shown.size() > kShownValue) shown = shown.substr(0, kShownValue) + "...";
  throw BadInput(
      fmt::format("{}: is {}; expected {}", place.empty() ? "/" : place, shown, expected));
}

ObjectReader::ObjectReader(const Json &value, std::string place)
    : value_(value), place_(std::move(place)) {
  if (!value.is_object()) refuse(place_, value, "an object");
}

std::string ObjectReader::place_of(std::string_view key) const {
  return place_ + '/' + escaped(key);
}

const Json *ObjectReader::find(std::string_view key) {
  known_.emplace_back(key);
  auto member = value_.find(known_.back());
  return member == value_.end() ? nullptr : &*member;
}

const Json &ObjectReader::get(std::string_view key) {
  const Json *member = find(key);
  if (member == nullptr) throw BadInput(place_of(key) + ": is missing");
  return *member;
}

uint64_t ObjectReader::number(std::string_view key, NumberRange range) {
  const Json &member = get(key);
  if (!member.is_number_unsigned() || member.get<uint64_t>() < range.least ||
      member.get<uint64_t>() > range.most) {
    refuse(place_of(key), member, fmt::format("an integer from {} to {}", range.least, range.most));
  }
  return member.get<uint64_t>();
}

uint64_t ObjectReader::number(std::string_view key, NumberRange range, uint64_t fallback) {
  return find(key) == nullptr ? fallback : number(key, range);
}

std::string ObjectReader::text(std::string_view key) {
  const Json &member = get(key);
  if (!member.is_string()) refuse(place_of(key), member, "a text");
  return member.get<std::string>();
}

std::string ObjectReader::text(std::string_view key, std::string_view fallback) {
  return find(key) == nullptr ? std::string(fallback) : text(key);
}

std::string ObjectReader::bytes(std::string_view key, size_t most) {
  const Json &member = get(key);
  auto bytes = utf8_to_bytes(text(key));
  if (!bytes || bytes->size() > most) {
    refuse(place_of(key), member, fmt::format("a text of at most {} bytes", most));
  }
  return *bytes;
}

void ObjectReader::hex(std::string_view key, std::span<uint8_t> field) {
  auto bytes = from_hex(text(key));
  if (!bytes || bytes->size() != field.size()) {
    refuse(place_of(key), get(key), fmt::format("{} bytes in hex", field.size()));
  }
  std::copy(bytes->begin(), bytes->end(), field.begin());
}

bool ObjectReader::flag(std::string_view key) {
  const Json &member = get(key);
  if (!member.is_boolean()) refuse(place_of(key), member, "true or false");
  return member.get<bool>();
}

void ObjectReader::finish() const {
  for (const auto &member : value_.items()) {
    if (std::find(known_.begin(), known_.end(), member.key()) != known_.end()) continue;
    std::set<std::string> names(known_.begin(), known_.end());
    throw BadInput(fmt::format("{}: is unknown; expected one of {}", place_of(member.key()),
                               fmt::join(names, ", ")));
  }
}

void for_each_element(const Json &array, const std::string &place,
                      const std::function<void(const Json &, const std::string &)> &function) {
  if (!array.is_array()) refuse(place, array, "an array");
  for (size_t i = 0; i < array.size(); ++i) function(array[i], fmt::format("{}/{}", place, i));
}

}  // namespace olt::box
