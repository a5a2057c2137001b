#include "box/pon/admission.h"

#include <algorithm>
#include <set>

namespace olt::box {

const char *auth_mode_name(AuthMode mode) {
  switch (mode) {
    case AuthMode::kAny:
      return "any ONU";
    case AuthMode::kMac:
      return "by MAC address";
    case AuthMode::kLoid:
      return "by LOID";
    case AuthMode::kMacAndLoid:
      break;
  }
  return "by MAC address and LOID";
}

std::optional<AllowList::Key> AllowList::key_of(const AuthEntry &entry) const {
  Key key;
  if (uses_mac()) {
    key.first = std::to_array(entry.mac);
    if (!is_unicast(key.first)) return std::nullopt;
  }
  if (uses_loid()) {
    key.second = text_of(entry.loid);
    if (key.second.empty()) return std::nullopt;
  }
  return key;
}

Access AllowList::check(const Onu &onu) const {
  auto entry = entries_.find({uses_mac() ? onu.mac() : Mac(), uses_loid() ? onu.loid() : ""});
  if (entry == entries_.end()) return Access::kNotListed;
  bool any_password = entry->second.empty();
  return any_password || entry->second == onu.password() ? Access::kAllowed
                                                         : Access::kWrongPassword;
}

Status AllowList::add(const std::vector<AuthEntry> &entries) {
  Entries added;
  for (const AuthEntry &entry : entries) {
    auto key = key_of(entry);
    if (!key) return Status::kBadValue;
    added[*key] = uses_loid() ? text_of(entry.password) : "";
  }
  auto fresh = std::count_if(added.begin(), added.end(), [this](const Entries::value_type &entry) {
    return !entries_.contains(entry.first);
  });
  if (entries_.size() + static_cast<size_t>(fresh) > kMaxAllowed) return Status::kFull;
  for (const auto &[key, password] : added) entries_[key] = password;
  return Status::kOk;
}

Status AllowList::remove(const std::vector<AuthEntry> &entries) {
  std::set<Key> keys;
  for (const AuthEntry &entry : entries) {
    auto key = key_of(entry);
    if (!key) return Status::kBadValue;
    if (!entries_.contains(*key)) return Status::kNotFound;
    keys.insert(*key);
  }
  for (const Key &key : keys) entries_.erase(key);
  return Status::kOk;
}

std::vector<AuthEntry> AllowList::entries() const {
  std::vector<AuthEntry> entries;
  entries.reserve(entries_.size());
  for (const auto &[key, password] : entries_) {
    AuthEntry &entry = entries.emplace_back();
    set_bytes(entry.mac, key.first);
    set_text(entry.loid, key.second);
    set_text(entry.password, password);
  }
  return entries;
}

size_t AllowList::footprint() const {
  return sizeof *this + entries_.size() * sizeof(Entries::value_type);
}

bool PonAccess::is_factory() const {
  return mode == AuthMode::kAny && std::all_of(lists.begin(), lists.end(),
                                               [](const AllowList &list) { return list.empty(); });
}

PonAdmission::PonAdmission(OnuState &onus) : onus_(onus), access_(onus_.topology.pon_interfaces) {}

Access PonAdmission::check(const Onu &onu) const {
  const PonAccess &access = of(onu.place().interface);
  return access.mode == AuthMode::kAny ? Access::kAllowed : access.list(access.mode).check(onu);
}

void PonAdmission::clear() {
  access_.assign(access_.size(), PonAccess());
}

void PonAdmission::join_all(uint32_t interface, TimePoint now) {
  for (Onu &onu : onus_.of_interface(interface)) {
    if (check(onu) == Access::kAllowed) {
      onu.admit(now);
    } else {
      onu.block(now);
    }
  }
}

void PonAdmission::rejoin(Onu &onu, TimePoint now) const {
  onu.block(now);
  if (check(onu) == Access::kAllowed) onu.admit(now);
}

size_t PonAdmission::block_unlisted(uint32_t interface, TimePoint now) {
  size_t count = 0;
  for (Onu &onu : onus_.of_interface(interface)) {
    if (!onu.admitted() || check(onu) == Access::kAllowed) continue;
    onu.block(now);
    ++count;
  }
  return count;
}

size_t PonAdmission::footprint() const {
  size_t size = sizeof *this;
  for (const PonAccess &access : access_) {
    for (const AllowList &list : access.lists) size += list.footprint();
  }
  return size;
}

}  // namespace olt::box
