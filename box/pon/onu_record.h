/// Records of ONUs and their parts, which setters write and readers return.
#ifndef OLT_BOX_PON_ONU_RECORD_H
#define OLT_BOX_PON_ONU_RECORD_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "box/state/archive.h"

namespace olt::box {

/// An ONU, or one of its parts: a UNI port, a voice line or a WAN connection. All are numbered from
/// 1; part 0 is the ONU itself.
struct OnuPart {
  uint32_t interface = 0;
  uint32_t onu = 0;
  uint32_t part = 0;

  bool operator==(const OnuPart &) const = default;
  bool operator<(const OnuPart &other) const {
    return std::tie(interface, onu, part) < std::tie(other.interface, other.onu, other.part);
  }
};

/// The slot of all PON interfaces.
inline constexpr uint32_t kPonSlot = 1;

/// "1/2/3" for an ONU, "1/2/3:4" for a part of it.
std::string to_text(const OnuPart &place);
std::optional<OnuPart> to_onu_part(std::string_view text);

/// What a record belongs to.
enum class Scope { kOnu, kUniPort, kVoiceLine, kWanConnection };

/// How listings show a record.
enum class Shown { kWords, kBytes, kText, kCountedIds };

/// The ids in a record that begins with their count, a byte; each id is a half-word.
std::vector<uint16_t> counted_ids(std::span<const uint8_t> record);

/// One record for each ONU or part, all of one size. Records are zero by default; those that are
/// zero take no memory.
class RecordTable {
 public:
  using Bytes = std::vector<uint8_t>;
  using Kept = std::map<OnuPart, Bytes>;

  struct KeptOfOnu {
    Kept::const_iterator begin() const { return first; }
    Kept::const_iterator end() const { return last; }
    bool empty() const { return first == last; }

    Kept::const_iterator first;
    Kept::const_iterator last;
  };

  RecordTable(std::string_view key, std::string_view title, Scope scope, size_t size,
              Shown shown = Shown::kWords);

  std::string_view key() const { return key_; }
  std::string_view title() const { return title_; }
  Scope scope() const { return scope_; }
  size_t size() const { return zeros_.size(); }
  bool is_secret() const { return is_secret_member(key_); }

  /// All zeros if no record was set.
  std::span<const uint8_t> at(const OnuPart &place) const;
  void set(const OnuPart &place, std::span<const uint8_t> record);
  void erase(const OnuPart &place) { records_.erase(place); }
  /// Deletes the records of an ONU and its parts.
  void forget(const OnuPart &onu);
  void clear() { records_.clear(); }

  /// The records other than zero, in order.
  const Kept &kept() const { return records_; }
  /// Those of one ONU and its parts.
  KeptOfOnu kept_of(const OnuPart &onu) const;
  /// As listings show it.
  std::string show(std::span<const uint8_t> record) const;

  /// A place is valid when the function says so.
  void describe(Archive &archive, const std::function<bool(Scope, const OnuPart &)> &valid);

  size_t footprint() const;

 private:
  std::string_view key_;
  std::string_view title_;
  Scope scope_;
  Shown shown_;
  Bytes zeros_;
  Kept records_;
};

}  // namespace olt::box

#endif
