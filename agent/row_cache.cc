#include "agent/row_cache.h"

#include <utility>

namespace olt::agent {

namespace {

/// FNV-1a. Of two questions with the same hash, the cache answers the one asked last.
uint64_t hash_of(const Table &table, Selection selection, const Key &key) {
  constexpr uint64_t kPrime = 0x100000001b3;
  uint64_t hash = 0xcbf29ce484222325;
  hash = (hash ^ reinterpret_cast<uintptr_t>(&table)) * kPrime;
  hash = (hash ^ static_cast<uint64_t>(selection)) * kPrime;
  for (uint32_t part : key) hash = (hash ^ part) * kPrime;
  return hash;
}

}  // namespace

/// A row that was found after another one also answers for itself.
bool RowCache::Entry::answers(const Table &asked, Selection how, const Key &named) const {
  if (table != &asked) return false;
  if (selection == how && key == named) return true;
  return how == Selection::kThis && found.answer->outcome == Outcome::kFound &&
         found.answer->row.key == named;
}

std::optional<RowCache::Found> RowCache::find(const Table &table, Selection selection,
                                              const Key &key, Clock::time_point now) {
  const uint64_t question = hash_of(table, selection, key);
  std::lock_guard guard(mutex_);
  auto known = by_question_.find(question);
  if (known == by_question_.end()) return std::nullopt;
  Entry &entry = *known->second;
  if (now - entry.found.read > kAge || !entry.answers(table, selection, key)) return std::nullopt;
  Found found = entry.found;
  entry.found.walk = nullptr;
  return found;
}

void RowCache::add(const Table &table, Selection selection, const Key &key, const Answer &answer,
                   Clock::time_point now, std::shared_ptr<Walk> walk) {
  if (answer.outcome == Outcome::kFailed) return;
  const uint64_t question = hash_of(table, selection, key);
  const uint64_t row = answer.outcome == Outcome::kFound
                           ? hash_of(table, Selection::kThis, answer.row.key)
                           : question;
  Found found{std::make_shared<const Answer>(answer), now, std::move(walk)};
  std::lock_guard guard(mutex_);
  if (entries_.size() == kRows) {
    for (uint64_t old : entries_.front().questions) forget(old, entries_.front());
    entries_.pop_front();
  }
  entries_.push_back({&table, selection, key, std::move(found), {question, row}});
  for (uint64_t one : {question, row}) by_question_[one] = &entries_.back();
}

void RowCache::forget(uint64_t question, const Entry &entry) {
  auto known = by_question_.find(question);
  if (known != by_question_.end() && known->second == &entry) by_question_.erase(known);
}

void RowCache::drop_all() {
  std::lock_guard guard(mutex_);
  entries_.clear();
  by_question_.clear();
}

}  // namespace olt::agent
