#include "cli/layout/json_value.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

constexpr size_t kLongestShown = 40;

std::string pointer_part(std::string_view key) {
  std::string text;
  for (char c : key) text += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
  return printable(text);
}

/// The root has no name of its own.
std::string shown_place(const std::string &place) {
  return place.empty() ? "/" : place;
}

std::string shown_value(const ordered_json &json) {
  if (json.is_object()) return "an object";
  if (json.is_array()) return "a list";
  std::string text = json.is_string()
                         ? json.get<std::string>()
                         : json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  if (text.size() > kLongestShown) text = text.substr(0, kLongestShown) + "...";
  return fmt::format("'{}'", printable(text));
}

/// Follows the parser from value to value.
class Watcher {
 public:
  explicit Watcher(size_t deepest) : deepest_(deepest) {}

  bool operator()(ordered_json::parse_event_t event, const ordered_json &parsed) {
    using Event = ordered_json::parse_event_t;
    switch (event) {
      case Event::key:
        take_key(parsed.get<std::string>());
        break;
      case Event::object_start:
      case Event::array_start:
        begin(event == Event::array_start);
        break;
      case Event::object_end:
      case Event::array_end:
        scopes_.pop_back();
        end_value();
        break;
      case Event::value:
        end_value();
        break;
    }
    return true;
  }

  std::string place() const {
    std::string text;
    for (const Scope &scope : scopes_) {
      text += '/' + (scope.is_list ? fmt::to_string(scope.index) : pointer_part(scope.key));
    }
    return shown_place(text);
  }

 private:
  struct Scope {
    bool is_list;
    size_t index = 0;
    std::string key{};
    std::set<std::string> keys{};
  };

  void begin(bool is_list) {
    if (scopes_.size() == deepest_) {
      throw BadInput(
          fmt::format("{}: nests too deep; expected at most {} levels", place(), deepest_));
    }
    scopes_.push_back({is_list});
  }

  void take_key(const std::string &key) {
    Scope &scope = scopes_.back();
    scope.key = key;
    if (scope.keys.insert(key).second) return;
    throw BadInput(fmt::format("{}: is given twice; expected once", place()));
  }

  void end_value() {
    if (!scopes_.empty()) ++scopes_.back().index;
  }

  size_t deepest_;
  std::vector<Scope> scopes_;
};

/// The parser stops behind the byte that it did not expect.
std::string line_and_column(std::string_view text, size_t stop) {
  std::string_view before = text.substr(0, std::min(std::max<size_t>(stop, 1) - 1, text.size()));
  auto line = 1 + std::count(before.begin(), before.end(), '\n');
  size_t column = before.size() - (before.rfind('\n') + 1) + 1;
  return fmt::format("{}:{}", line, column);
}

/// What the parser's message says that it waited for.
std::string expectation(std::string_view message) {
  constexpr std::string_view kExpected = "; expected ";
  size_t at = message.rfind(kExpected);
  if (at == std::string_view::npos) return "a value that JSON allows";
  return printable_ascii(message.substr(at + kExpected.size()));
}

}  // namespace

ordered_json parse_json(std::string_view text, size_t deepest) {
  Watcher watcher(deepest);
  try {
    return ordered_json::parse(
        text, [&watcher](int /*depth*/, ordered_json::parse_event_t event,
                         const ordered_json &parsed) { return watcher(event, parsed); });
  } catch (const ordered_json::parse_error &error) {
    throw BadInput(fmt::format("{}: is not JSON; expected {}", line_and_column(text, error.byte),
                               expectation(error.what())));
  } catch (const ordered_json::out_of_range &) {
    throw BadInput(
        fmt::format("{}: is too large a number; expected a smaller one", watcher.place()));
  }
}

void JsonValue::refuse(const std::string &what, const std::string &expected) const {
  throw BadInput(fmt::format("{}: {}; expected {}", shown_place(place_), what, expected));
}

void JsonValue::refuse(const std::string &expected) const {
  refuse(shown_value(*json_) + " given", expected);
}

uint32_t JsonValue::number(uint32_t min, uint32_t max) const {
  if (!json_->is_number_unsigned() || json_->get<uint64_t>() < min ||
      json_->get<uint64_t>() > max) {
    refuse(min == max ? fmt::to_string(min) : fmt::format("a number from {} to {}", min, max));
  }
  return json_->get<uint32_t>();
}

bool JsonValue::flag() const {
  if (!json_->is_boolean()) refuse("true or false");
  return json_->get<bool>();
}

std::string JsonValue::text() const {
  if (!json_->is_string()) refuse("a text");
  return json_->get<std::string>();
}

void JsonValue::require_object() const {
  if (!json_->is_object()) refuse("an object");
}

JsonValue JsonValue::member(const std::string &name, const ordered_json &json) const {
  return {json, fmt::format("{}/{}", place_, pointer_part(name))};
}

void JsonValue::take_only(std::initializer_list<const char *> names) const {
  require_object();
  for (const auto &[key, value] : json_->items()) {
    if (std::find(names.begin(), names.end(), key) != names.end()) continue;
    member(key, value).refuse("there is no such member", fmt::format("{}", fmt::join(names, ", ")));
  }
}

std::optional<JsonValue> JsonValue::find(const char *name) const {
  require_object();
  auto found = json_->find(name);
  if (found == json_->end()) return std::nullopt;
  return member(name, *found);
}

JsonValue JsonValue::at(const char *name) const {
  std::optional<JsonValue> found = find(name);
  if (!found) refuse(fmt::format("'{}' is missing", name), "it");
  return *found;
}

void JsonValue::each_member(
    const std::function<void(const std::string &, const JsonValue &)> &take) const {
  require_object();
  for (const auto &[key, value] : json_->items()) take(key, member(key, value));
}

void JsonValue::each_element(const std::function<void(const JsonValue &)> &take) const {
  if (!json_->is_array()) refuse("a list");
  for (size_t i = 0; i < json_->size(); ++i) take({(*json_)[i], fmt::format("{}/{}", place_, i)});
}

}  // namespace olt::cli
