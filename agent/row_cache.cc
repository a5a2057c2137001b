#include "agent/row_cache.h"

#include <utility>

namespace olt::agent {

namespace {

/// FNV-1a, so that a look-up compares numbers, and keys only when it has found one.
uint64_t hash_of(const Key &key) {
  uint64_t hash = 0xcbf29ce484222325;
  for (uint32_t part : key) hash = (hash ^ part) * 0x100000001b3;
  return hash;
}

}  // namespace

/// A row that was found after another one also answers for itself.
bool RowCache::Entry::answers(const Table &asked, Selection how, const Key &named,
                              uint64_t named_hash) const {
  if (table != &asked) return false;
  if (selection == how && hash == named_hash && key == named) return true;
  return how == Selection::kThis && row_hash == named_hash &&
         found.answer->outcome == Outcome::kFound && found.answer->row.key == named;
}

std::optional<RowCache::Found> RowCache::find(const Table &table, Selection selection,
                                              const Key &key, Clock::time_point now) {
  const uint64_t hash = hash_of(key);
  std::lock_guard guard(mutex_);
  for (size_t i = 1; i <= entries_.size(); ++i) {
    Entry &entry = entries_[(end_ + kRows - i) % kRows];
    if (now - entry.found.read > kAge) break;  // all others are older
    if (!entry.answers(table, selection, key, hash)) continue;
    Found found = entry.found;
    entry.found.walk = nullptr;
    return found;
  }
  return std::nullopt;
}

void RowCache::add(const Table &table, Selection selection, const Key &key, const Answer &answer,
                   Clock::time_point now, std::shared_ptr<Walk> walk) {
  if (answer.outcome == Outcome::kFailed) return;
  Entry entry{.table = &table,
              .selection = selection,
              .key = key,
              .found = {std::make_shared<const Answer>(answer), now, std::move(walk)},
              .hash = hash_of(key),
              .row_hash = hash_of(answer.row.key)};
  std::lock_guard guard(mutex_);
  if (entries_.size() < kRows) {
    entries_.push_back(std::move(entry));
  } else {
    entries_[end_] = std::move(entry);
  }
  end_ = (end_ + 1) % kRows;
}

void RowCache::drop_all() {
  std::lock_guard guard(mutex_);
  entries_.clear();
  end_ = 0;
}

}  // namespace olt::agent
