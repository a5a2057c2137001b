/// JSON whose mistakes are reported with their place.
#ifndef OLT_CLI_LAYOUT_JSON_VALUE_H
#define OLT_CLI_LAYOUT_JSON_VALUE_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace olt::cli {

/// Parses a document. Throws BadInput for text that is not JSON, names a member twice, or nests too
/// deep.
nlohmann::ordered_json parse_json(std::string_view text, size_t deepest);

/// A value and its place. All functions throw BadInput when the value is of another type.
class JsonValue {
 public:
  JsonValue(const nlohmann::ordered_json &json, std::string place)
      : json_(&json), place_(std::move(place)) {}

  /// "PLACE: what; expected WHAT". Throws BadInput.
  [[noreturn]] void refuse(const std::string &what, const std::string &expected) const;
  /// The same; "what" shows the value.
  [[noreturn]] void refuse(const std::string &expected) const;

  uint32_t number(uint32_t min, uint32_t max) const;
  bool flag() const;
  std::string text() const;

  /// Refuses an object with other members.
  void take_only(std::initializer_list<const char *> names) const;
  /// An optional member and a required one.
  std::optional<JsonValue> find(const char *name) const;
  JsonValue at(const char *name) const;

  void each_member(const std::function<void(const std::string &, const JsonValue &)> &take) const;
  void each_element(const std::function<void(const JsonValue &)> &take) const;

 private:
  void require_object() const;
  JsonValue member(const std::string &name, const nlohmann::ordered_json &json) const;

  const nlohmann::ordered_json *json_;
  std::string place_;  ///< a JSON pointer
};

}  // namespace olt::cli

#endif
