#include "agent/rows.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "agent/call.h"

namespace olt::agent {

namespace {

/// What an operation returns that checked its arguments itself.
constexpr int32_t kNotSent = -1;

uint32_t largest(const IndexPart &part) {
  if (part.is_name()) return UINT8_MAX;
  return part.width >= sizeof(uint32_t) ? UINT32_MAX : (1U << (8 * part.width)) - 1;
}

/// The key as long as an index, with the largest values from a sub-identifier on that is too large
/// for its place. Rows have numbers from 1 on, so zeros stand for what a short key leaves out.
Key completed(const Table &table, const Key &key) {
  Key complete;
  bool is_over = false;
  for (const IndexPart &part : table.index) {
    for (size_t i = 0; i < part.length(); ++i) {
      size_t at = complete.size();
      uint32_t value = at < key.size() ? key[at] : 0;
      is_over = is_over || value > largest(part);
      complete.push_back(is_over ? largest(part) : value);
    }
  }
  return complete;
}

enum class Place : uint8_t { kReader, kStepper };

void name_row(Call &call, const Table &table, const Key &key, Place place) {
  size_t at = 0;
  for (const IndexPart &part : table.index) {
    uint32_t offset = place == Place::kReader ? part.request_offset : part.step_offset;
    if (part.is_name()) {
      Bytes name(key.begin() + static_cast<Key::difference_type>(at),
                 key.begin() + static_cast<Key::difference_type>(at + part.width));
      call.set_bytes(0, offset, name);
    } else {
      call.set_bytes(0, offset, {reinterpret_cast<const uint8_t *>(&key[at]), part.width});
    }
    at += part.length();
  }
}

/// The row that the record names; empty when the record is too short.
Key named_row(const Table &table, ByteView record, Place place) {
  Key key;
  for (const IndexPart &part : table.index) {
    uint32_t offset = place == Place::kReader ? part.reply_offset : part.step_offset;
    if (record.size() < size_t{offset} + part.width) return {};
    ByteView bytes = record.subspan(offset, part.width);
    if (part.is_name()) {
      std::string name = text_in(bytes);
      for (char c : name) key.push_back(static_cast<uint8_t>(c));
      key.insert(key.end(), part.width - name.size(), 0);
    } else {
      uint32_t number = 0;
      std::memcpy(&number, bytes.data(), bytes.size());
      key.push_back(number);
    }
  }
  return key;
}

Bytes copied(ByteView bytes) {
  return {bytes.begin(), bytes.end()};
}

uint8_t module_of(const catalog::Operation &operation) {
  return operation.address.module;
}

}  // namespace

Answer RowReader::read(const Table &table, Selection selection, const Key &key) const {
  if (table.rows != nullptr) return table.rows->read(*this, selection, key);
  if (table.is_scalar) return scalars(table, selection, key);
  if (selection == Selection::kThis) {
    if (key.size() != table.index_length() || completed(table, key) != key) {
      return {Outcome::kNone};
    }
    return select(table, selection, key);
  }
  if (table.stepper == nullptr) return select(table, selection, key);
  for (Key at = key;;) {
    Answer found = step(table, at);
    if (found.outcome != Outcome::kFound) return found;
    Answer answer = select(table, Selection::kThis, found.row.key);
    if (answer.outcome != Outcome::kNone) return answer;
    at = std::move(found.row.key);
  }
}

Answer RowReader::scalars(const Table &table, Selection selection, const Key &key) const {
  const Key only{0};
  if (selection == Selection::kThis ? key != only : key >= only) return {Outcome::kNone};
  if (table.counts_rows) return count_rows(table);
  Call call(*table.reader);
  if (int32_t result = call.make()) return not_read(*table.reader, result);
  return {Outcome::kFound, {only, copied(call.bytes(table.record))}, 0, module_of(*table.reader)};
}

/// A reader that returns the same row again ends the count, too.
Answer RowReader::count_rows(const Table &table) const {
  Call call(*table.reader);
  uint32_t count = 0;
  Bytes last;
  while (true) {
    int32_t result = call.make();
    if (result == end_of_table_) break;
    if (result != 0) return not_read(*table.reader, result);
    Bytes row = copied(call.bytes(table.record));
    if (row == last) break;
    last = std::move(row);
    ++count;
  }
  const auto *word = reinterpret_cast<const uint8_t *>(&count);
  return {Outcome::kFound, {{0}, {word, word + sizeof count}}, 0, module_of(*table.reader)};
}

Answer RowReader::select(const Table &table, Selection selection, const Key &key) const {
  Call call(*table.reader);
  name_row(call, table, completed(table, key), Place::kReader);
  if (table.stepper == nullptr) {
    bool is_next = selection == Selection::kNext;
    call.set_word(0, table.selector_offset, is_next ? selection_.next_row : selection_.this_row);
  }
  int32_t result = call.make();
  if (result == kNotSent && table.stepper != nullptr) return {Outcome::kNone};
  if (result != 0) return not_read(*table.reader, result);
  const uint8_t module = module_of(*table.reader);
  size_t naming = table.reader->arguments()[0].is_output() ? 0 : table.record;
  Row row{named_row(table, call.bytes(naming), Place::kReader), copied(call.bytes(table.record))};
  if (selection == Selection::kThis) {
    if (row.key != key) return {Outcome::kNone, {}, 0, module};
  } else if (row.key <= key) {
    return {Outcome::kFailed, {}, 0, module};  // a walk would never end
  }
  return {Outcome::kFound, std::move(row), 0, module};
}

Answer RowReader::step(const Table &table, const Key &key) const {
  Call call(*table.stepper);
  name_row(call, table, completed(table, key), Place::kStepper);
  call.set_word(0, table.selector_offset, selection_.next_row);
  if (int32_t result = call.make()) return not_read(*table.stepper, result);
  Row row{named_row(table, call.bytes(0), Place::kStepper), {}};
  const uint8_t module = module_of(*table.stepper);
  if (row.key <= key) return {Outcome::kFailed, {}, 0, module};
  return {Outcome::kFound, std::move(row), 0, module};
}

Answer RowReader::write(const Table &table, const Column &column, const Key &key,
                        ByteView bytes) const {
  Answer present = read(table, Selection::kThis, key);
  if (present.outcome != Outcome::kFound) return present;
  Bytes &record = present.row.record;
  std::copy_n(bytes.begin(), std::min<size_t>(bytes.size(), column.field.width),
              record.data() + column.field.offset);
  Call call(*column.setter);
  name_row(call, table, key, Place::kReader);
  // The record may be the argument that names the row: it does so itself.
  call.set_bytes(column.setter_argument, 0, ByteView(record).subspan(column.setter_offset));
  if (table.stepper == nullptr) call.set_word(0, table.selector_offset, selection_.this_row);
  if (int32_t result = call.make()) {
    return {Outcome::kFailed, {}, result, module_of(*column.setter)};
  }
  return present;
}

Answer RowReader::not_read(const catalog::Operation &operation, int32_t result) const {
  return {result == end_of_table_ ? Outcome::kNone : Outcome::kFailed,
          {},
          result,
          result == kNotSent ? uint8_t{0} : module_of(operation)};
}

}  // namespace olt::agent
