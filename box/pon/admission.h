/// Which ONUs may join a PON interface, by its authentication mode and allow lists.
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

/// Each mode but kAny has an allow list of its own.
enum class AuthMode : uint32_t { kAny, kMac, kLoid, kMacAndLoid };

inline constexpr uint64_t kLastAuthMode = static_cast<uint64_t>(AuthMode::kMacAndLoid);

/// "by MAC address".
const char *auth_mode_name(AuthMode mode);

inline constexpr size_t kMaxAllowed = 16'384;

/// Whether an ONU may join, and if not, why.
enum class Access : uint8_t { kAllowed, kNotListed, kWrongPassword };

/// The ONUs that may join in one mode, by MAC address, LOID or both, with their passwords.
class AllowList {
 public:
  explicit AllowList(AuthMode mode) : mode_(mode) {}

  AuthMode mode() const { return mode_; }
  bool empty() const { return entries_.empty(); }
  size_t size() const { return entries_.size(); }
  Access check(const Onu &onu) const;

  /// Change all entries, or none.
  Status add(const std::vector<AuthEntry> &entries);
  Status remove(const std::vector<AuthEntry> &entries);

  /// In order; fields that the mode does not use are zero.
  std::vector<AuthEntry> entries() const;
  size_t footprint() const;

 private:
  using Key = std::pair<Mac, std::string>;  ///< MAC address, LOID; zero or empty if not used
  using Password = std::string;             ///< empty accepts any
  using Entries = std::map<Key, Password>;

  bool uses_mac() const { return mode_ != AuthMode::kLoid; }
  bool uses_loid() const { return mode_ != AuthMode::kMac; }
  /// Nothing if the entry lacks an address or LOID that the mode uses.
  std::optional<Key> key_of(const AuthEntry &entry) const;

  AuthMode mode_;
  Entries entries_;
};

/// Authentication on one PON interface.
struct PonAccess {
  AllowList &list(AuthMode of) { return lists[static_cast<size_t>(of) - 1]; }
  const AllowList &list(AuthMode of) const { return lists[static_cast<size_t>(of) - 1]; }
  bool is_factory() const;

  AuthMode mode = AuthMode::kAny;
  std::array<AllowList, 3> lists = {AllowList(AuthMode::kMac), AllowList(AuthMode::kLoid),
                                    AllowList(AuthMode::kMacAndLoid)};
};

/// Admits and blocks ONUs as the authentication of their interfaces requires.
class PonAdmission {
 public:
  explicit PonAdmission(OnuState &onus);

  PonAccess &of(uint32_t interface) { return access_[interface - 1]; }
  const PonAccess &of(uint32_t interface) const { return access_[interface - 1]; }
  Access check(const Onu &onu) const;
  /// Restores the factory's modes and lists. ONUs are checked when they next join.
  void clear();

  /// Admits or blocks every ONU of the interface. Those that are up and stay admitted go on.
  void join_all(uint32_t interface, TimePoint now);
  /// Makes one ONU join again.
  void rejoin(Onu &onu, TimePoint now) const;
  /// Blocks the admitted ONUs that may no longer join. @return how many.
  size_t block_unlisted(uint32_t interface, TimePoint now);

  size_t footprint() const;

 private:
  OnuState &onus_;
  std::vector<PonAccess> access_;
};

}  // namespace olt::box

#endif
