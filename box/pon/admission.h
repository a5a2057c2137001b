/// Which ONUs may join: the authentication of the PON interfaces, and what comes of it.
#ifndef OLT_BOX_PON_ADMISSION_H
#define OLT_BOX_PON_ADMISSION_H

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/mac.h"
#include "box/pon/onu_family.h"
#include "box/wire/records.h"
#include "box/wire/status.h"

namespace olt::box {

/// Each but the first goes by an allow list of its own.
enum class AuthMode : uint32_t { kAny, kMac, kLoid, kMacAndLoid };

inline constexpr uint64_t kLastAuthMode = static_cast<uint64_t>(AuthMode::kMacAndLoid);

/// "by MAC address".
const char *auth_mode_name(AuthMode mode);

inline constexpr size_t kMostAllowed = 16'384;

/// Whether an ONU would be let in, and why not.
enum class Verdict : uint8_t { kAllowed, kNotListed, kWrongPassword };

/// Which ONUs one mode lets in: their passwords, by what the mode goes by.
class AllowList {
 public:
  explicit AllowList(AuthMode mode) : mode_(mode) {}

  AuthMode mode() const { return mode_; }
  bool empty() const { return entries_.empty(); }
  size_t size() const { return entries_.size(); }
  Verdict judge(const Onu &onu) const;

  /// All entries are taken, or none.
  Status add(const std::vector<AuthEntry> &entries);
  Status remove(const std::vector<AuthEntry> &entries);

  /// In order; fields that the mode does not use are zero.
  std::vector<AuthEntry> entries() const;
  size_t footprint() const;

 private:
  using Key = std::pair<Mac, std::string>;  ///< with LOID
  using Password = std::string;             ///< empty: any
  using Entries = std::map<Key, Password>;

  bool goes_by_mac() const { return mode_ != AuthMode::kLoid; }
  bool goes_by_loid() const { return mode_ != AuthMode::kMac; }
  /// Nothing when the entry lacks what the mode goes by.
  std::optional<Key> key_of(const AuthEntry &entry) const;

  AuthMode mode_;
  Entries entries_;
};

/// Of one PON interface.
struct PonAccess {
  AllowList &list(AuthMode of) { return lists[static_cast<size_t>(of) - 1]; }
  const AllowList &list(AuthMode of) const { return lists[static_cast<size_t>(of) - 1]; }
  bool as_from_factory() const;

  AuthMode mode = AuthMode::kAny;
  std::array<AllowList, 3> lists = {AllowList(AuthMode::kMac), AllowList(AuthMode::kLoid),
                                    AllowList(AuthMode::kMacAndLoid)};
};

/// Lets the ONUs in and keeps them out, as the interfaces' authentication says.
class PonAdmission {
 public:
  explicit PonAdmission(OnuState &onus);

  PonAccess &of(uint32_t interface) { return access_[interface - 1]; }
  const PonAccess &of(uint32_t interface) const { return access_[interface - 1]; }
  Verdict judge(const Onu &onu) const;
  /// Makes modes and lists as from the factory. The ONUs do not notice until they try to join.
  void clear();

  /// Has all ONUs of the interface try to join; those that are up and may be so stay up.
  void try_all(uint32_t interface, TimePoint now);
  /// Has a single one try to join from the start.
  void try_anew(Onu &onu, TimePoint now) const;
  /// Blocks the ONUs that joined, but may no longer. @return how many.
  size_t throw_out(uint32_t interface, TimePoint now);

  size_t footprint() const;

 private:
  OnuState &onus_;
  std::vector<PonAccess> access_;
};

}  // namespace olt::box

#endif
