#include "box/pon/admission.h"

#include <algorithm>
#include <set>

#include "base/mac.h"

namespace olt::box {

namespace {

constexpr size_t kLoidField = kEntryPasswordAt - kEntryLoidAt;

/// Copies a text up to its zero: front ends may leave anything behind it.
void copy_text(std::span<const uint8_t> text, std::span<uint8_t> field) {
  std::copy(text.begin(), std::find(text.begin(), text.end(), 0), field.begin());
}

}  // namespace

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

std::optional<AllowList::Key> AllowList::key_of(std::span<const uint8_t> entry) const {
  Key key = {};
  if (goes_by_mac()) {
    Mac mac;
    std::copy_n(entry.begin(), mac.size(), mac.begin());
    if (!is_unicast(mac)) return std::nullopt;
    std::copy(mac.begin(), mac.end(), key.begin());
  }
  if (goes_by_loid()) {
    copy_text(entry.subspan(kEntryLoidAt, kLoidField), std::span(key).subspan(kEntryLoidAt));
    if (key[kEntryLoidAt] == 0) return std::nullopt;
  }
  return key;
}

AllowList::Password AllowList::password_of(std::span<const uint8_t> entry) const {
  Password password = {};
  if (goes_by_loid()) copy_text(entry.subspan(kEntryPasswordAt, password.size()), password);
  return password;
}

Verdict AllowList::judge(const Onu &onu) const {
  Record record = {};
  Mac mac = onu.mac();
  std::string loid = onu.loid();
  std::string password = onu.password();
  std::copy(mac.begin(), mac.end(), record.begin());
  std::copy(loid.begin(), loid.end(), record.begin() + kEntryLoidAt);
  std::copy(password.begin(), password.end(), record.begin() + kEntryPasswordAt);
  auto entry = entries_.find(*key_of(record));
  if (entry == entries_.end()) return Verdict::kNotListed;
  bool any_password = entry->second == Password{};
  return any_password || entry->second == password_of(record) ? Verdict::kAllowed
                                                              : Verdict::kWrongPassword;
}

Status AllowList::add(std::span<const uint8_t> entries) {
  Entries added;
  for (; !entries.empty(); entries = entries.subspan(kAuthEntry)) {
    auto key = key_of(entries);
    if (!key) return Status::kBadValue;
    added[*key] = password_of(entries);
  }
  auto fresh = std::count_if(added.begin(), added.end(), [this](const Entries::value_type &entry) {
    return !entries_.contains(entry.first);
  });
  if (entries_.size() + static_cast<size_t>(fresh) > kMostAllowed) return Status::kFull;
  for (const auto &[key, password] : added) entries_[key] = password;
  return Status::kOk;
}

Status AllowList::remove(std::span<const uint8_t> entries) {
  std::set<Key> keys;
  for (; !entries.empty(); entries = entries.subspan(kAuthEntry)) {
    auto key = key_of(entries);
    if (!key) return Status::kBadValue;
    if (!entries_.contains(*key)) return Status::kNotFound;
    keys.insert(*key);
  }
  for (const Key &key : keys) entries_.erase(key);
  return Status::kOk;
}

std::vector<AllowList::Record> AllowList::records() const {
  std::vector<Record> records;
  records.reserve(entries_.size());
  for (const auto &[key, password] : entries_) {
    Record &record = records.emplace_back();
    std::copy(key.begin(), key.end(), record.begin());
    std::copy(password.begin(), password.end(), record.begin() + kEntryPasswordAt);
  }
  return records;
}

size_t AllowList::footprint() const {
  return sizeof *this + entries_.size() * sizeof(Entries::value_type);
}

bool PonAccess::as_from_factory() const {
  return mode == AuthMode::kAny && std::all_of(lists.begin(), lists.end(),
                                               [](const AllowList &list) { return list.empty(); });
}

PonAdmission::PonAdmission(SharedOnus onus)
    : onus_(std::move(onus)), access_(onus_->topology.pon_interfaces) {}

Verdict PonAdmission::judge(const Onu &onu) const {
  const PonAccess &access = of(onu.place().interface);
  return access.mode == AuthMode::kAny ? Verdict::kAllowed : access.list(access.mode).judge(onu);
}

void PonAdmission::clear() {
  access_.assign(access_.size(), PonAccess());
}

void PonAdmission::try_all(uint32_t interface, TimePoint now) {
  for (Onu &onu : onus_->of_interface(interface)) {
    if (judge(onu) == Verdict::kAllowed) {
      onu.admit(now);
    } else {
      onu.block(now);
    }
  }
}

void PonAdmission::try_anew(Onu &onu, TimePoint now) const {
  onu.block(now);
  if (judge(onu) == Verdict::kAllowed) onu.admit(now);
}

size_t PonAdmission::throw_out(uint32_t interface, TimePoint now) {
  size_t count = 0;
  for (Onu &onu : onus_->of_interface(interface)) {
    if (!onu.admitted() || judge(onu) == Verdict::kAllowed) continue;
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
