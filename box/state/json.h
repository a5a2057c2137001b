/// Strict reading of JSON: whatever is not as expected is reported with its place.
#ifndef OLT_BOX_STATE_JSON_H
#define OLT_BOX_STATE_JSON_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::box {

using Json = nlohmann::ordered_json;

/// Throws BadInput: "LINE:COLUMN: reason", or the place of a key that is given twice.
Json parse_json(std::string_view text);

/// Throws BadInput: "PLACE: is VALUE; expected EXPECTED".
[[noreturn]] void refuse(const std::string &place, const Json &value, std::string_view expected);

struct NumberRange {
  uint64_t least;
  uint64_t most;
};

/// Reads an object member by member; places are JSON pointers. The value must outlive the reader.
/// Every member function throws BadInput.
class ObjectReader {
 public:
  ObjectReader(const Json &value, std::string place);

  /// The member, or null; it counts as known from then on.
  const Json *find(std::string_view key);
  /// The member, which must be there.
  const Json &get(std::string_view key);

  uint64_t number(std::string_view key, NumberRange range);
  uint64_t number(std::string_view key, NumberRange range, uint64_t fallback);
  std::string text(std::string_view key);
  std::string text(std::string_view key, std::string_view fallback);
  /// A text that stands for bytes (bytes_to_utf8), at most so many.
  std::string bytes(std::string_view key, size_t most);
  /// A text that gives as many bytes in hex as the field has.
  void hex(std::string_view key, std::span<uint8_t> field);
  bool flag(std::string_view key);

  std::string place_of(std::string_view key) const;
  /// To be called last: refuses members that nobody asked for.
  void finish() const;

 private:
  const Json &value_;
  std::string place_;
  std::vector<std::string> known_;
};

/// Calls the function with each element of an array and its place.
void for_each_element(const Json &array, const std::string &place,
                      const std::function<void(const Json &, const std::string &)> &function);

inline constexpr NumberRange kAnyU16 = {0, UINT16_MAX};
inline constexpr NumberRange kAnyU32 = {0, UINT32_MAX};
inline constexpr NumberRange kAnyU64 = {0, UINT64_MAX};

}  // namespace olt::box

#endif
