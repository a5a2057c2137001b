/// What the box keeps, described once: the same calls write it and read it back.
#ifndef OLT_BOX_STATE_ARCHIVE_H
#define OLT_BOX_STATE_ARCHIVE_H

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/clock.h"
#include "base/text.h"
#include "box/state/cbor.h"

namespace olt::box {

struct NumberRange {
  uint64_t min;
  uint64_t max;
};

/// Whether the members of that name hold secrets, themselves or in their entries. Their values are
/// marked as secret and do not show in any error line.
bool is_secret_member(std::string_view key);

/// A key as a part of a JSON pointer.
std::string pointer_part(std::string_view key);

/// What stands for a secret in JSON that does not show it.
inline constexpr std::string_view kMask = "********";

/// Describes an object member by member. Writing takes the values; reading checks them and replaces
/// them, in any order of the members. Reading throws BadInput, "PLACE: is VALUE; expected WHAT",
/// where PLACE is a JSON pointer; it shows no part of a secret. Keys must outlive the archive.
class Archive {
 public:
  /// One to write to.
  Archive();
  /// One to read what take gave, or what came from JSON.
  explicit Archive(std::string_view data);
  Archive(const Archive &) = delete;
  Archive &operator=(const Archive &) = delete;

  bool is_reading() const { return std::holds_alternative<Reading>(mode_); }

  template <std::unsigned_integral Number>
  void number(std::string_view key, Number &value,
              NumberRange range = {0, std::numeric_limits<Number>::max()}) {
    uint64_t wide = value;
    wide_number(key, wide, range);
    value = static_cast<Number>(wide);
  }
  void flag(std::string_view key, bool &value);
  /// A text of at most max bytes, any bytes.
  void text(std::string_view key, std::string &value, size_t max);
  /// As many bytes as the field has.
  void bytes(std::string_view key, std::span<uint8_t> field);
  /// To the millisecond.
  void moment(std::string_view key, TimePoint &value);

  /// A member whose own members the function describes.
  void object(std::string_view key, const std::function<void()> &describe);

  /// A member that is a list of objects. Writing calls write, which calls element for each; reading
  /// calls read for each, at most max times.
  void list(std::string_view key, size_t max, const std::function<void()> &write,
            const std::function<void()> &read);
  void element(const std::function<void()> &describe);

  /// The same with a container of which the function describes each element. Reading replaces what
  /// it holds.
  template <typename Container, typename Describe>
  void list(std::string_view key, Container &elements, size_t max, Describe describe) {
    if (is_reading()) elements.clear();
    list(
        key, max,
        [&] {
          for (const auto &element_of : elements) {
            auto copy = element_of;
            element([&] { describe(copy); });
          }
        },
        [&] {
          typename Container::value_type read{};
          describe(read);
          elements.insert(elements.end(), std::move(read));
        });
  }

  /// A member whose own members are named by what they belong to, each of them bytes. Writing calls
  /// write, which calls entry for each; reading calls take for each.
  using TakeEntry = std::function<void(std::string_view name, ByteView value)>;
  void entries(std::string_view key, const std::function<void()> &write, const TakeEntry &take);
  void entry(std::string_view name, ByteView value);

  /// Reading: whether the member is there; the values of one that is not stay as they are.
  bool has(std::string_view key);

  /// Reading: whether the member is that text, for members that are otherwise no text.
  bool is(std::string_view key, std::string_view text);

  /// Reading: what is wrong with the member, which was read.
  [[noreturn]] void refuse(std::string_view key, std::string_view expected);

  /// Writing: ends the object. @return the data.
  std::string take();
  /// Reading, last: refuses members that nobody described.
  void finish();

  /// Reading: elements and entries that are refused are left out from here on.
  void adopt() { adopts_ = true; }
  /// Why each of them was.
  const std::vector<std::string> &left_out() const { return left_out_; }

 private:
  struct Member {
    std::string_view key;
    size_t at;
    bool described = false;
  };
  /// An object that is being read, and the way to it.
  struct Scope {
    std::string place;
    std::vector<Member> members;
    std::vector<std::string_view> known;  ///< keys that were asked for
  };
  struct Reading {
    std::string_view data;
    std::vector<Scope> scopes;
  };
  struct Writing {
    CborWriter out;
    bool entries_are_secret = false;
  };

  Reading &in() { return std::get<Reading>(mode_); }
  CborWriter &out() { return std::get<Writing>(mode_).out; }

  void wide_number(std::string_view key, uint64_t &value, NumberRange range);

  Member *find(std::string_view key);
  CborReader value_of(std::string_view key);
  void enter(std::string place, CborReader &reader);
  void leave();
  std::string place_of(std::string_view key);
  [[noreturn]] static void refuse(const std::string &place, const CborReader::Value &value,
                                  bool is_secret, std::string_view expected);
  /// @return false when what was read is left out.
  bool attempt(const std::function<void()> &read);

  std::variant<Writing, Reading> mode_;
  bool adopts_ = false;
  std::vector<std::string> left_out_;
};

}  // namespace olt::box

#endif
