/// Layouts: what bytes mean to the modules that are asked. The library only carries most of them.
#ifndef OLT_CATALOG_LAYOUT_H
#define OLT_CATALOG_LAYOUT_H

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/operation.h"

namespace olt::catalog {

/// Where the request for a row of a table says which one is wanted, and how.
struct RowSelection {
  uint32_t target_offset;  ///< of the word in the record of an ONT
  uint32_t record_offset;  ///< of the word in other records
  uint32_t this_row;
  uint32_t next_row;
};

/// The pieces in which a firmware image is sent, and how the modules say how far an update is.
struct ImagePieces {
  uint32_t head_size;        ///< bytes in front of those of the image
  uint32_t length_offset;    ///< of the word in the head with the image's length
  uint32_t position_offset;  ///< of the word in the head with the piece's offset in the image
  uint32_t piece_size;       ///< bytes of the image in every piece but the last
  uint32_t max_size;         ///< of an image
  uint32_t progress_offset;  ///< of the word in the answer with the progress
  uint32_t complete;         ///< the progress of a complete update
  uint32_t failed;           ///< the progress of a failed one
};

/// The bytes that a layout may describe under one name.
struct Extent {
  uint32_t size = 0;           ///< of a record; of a block, those that it has at least
  bool is_open = false;        ///< a block or stream, which may be longer
  const char *word = nullptr;  ///< the argument's name when it is a number
};

/// The operations with the fields that a layout gives their arguments, what statuses mean, and how
/// rows are found. Whatever shows or takes a field gets its operation from the active layout.
class Layout {
 public:
  /// What the simulated box means.
  static const Layout &box();
  /// What the public header says and no more.
  static const Layout &contract();

  /// The same as the base until something is set. The base must outlive it.
  Layout(std::string name, const Layout &base);
  Layout(const Layout &) = delete;
  Layout(Layout &&) = default;

  const std::string &name() const { return name_; }
  std::span<const Family> families() const { return families_; }
  /// The operation of that name, or null.
  const Operation *find(std::string_view name) const;

  const std::map<uint16_t, std::string> &statuses() const { return statuses_; }
  /// Whose statuses they are.
  const std::string &status_source() const { return status_source_; }
  std::optional<uint16_t> end_of_table() const { return end_of_table_; }
  const std::optional<RowSelection> &row_selection() const { return row_selection_; }
  const std::optional<ImagePieces> &olt_update() const { return olt_update_; }
  const std::optional<ImagePieces> &onu_update() const { return onu_update_; }
  /// Fields of an ONT's record; those that name a row are the index of a table.
  std::span<const Field> target_fields() const { return target_fields_; }

  // To describe one.

  /// What a name stands for: a C type, a record's name, or OPERATION.ARGUMENT of a number. Nothing
  /// when it is none of them.
  std::optional<Extent> extent_of(std::string_view name) const;
  /// The fields follow each other without gaps; of a number there is one. The name must have an
  /// extent.
  void set_fields(std::string_view name, std::vector<Field> fields);
  void set_statuses(std::map<uint16_t, std::string> statuses);
  void set_end_of_table(uint16_t status) { end_of_table_ = status; }
  void set_row_selection(const RowSelection &selection) { row_selection_ = selection; }
  void set_olt_update(const ImagePieces &pieces) { olt_update_ = pieces; }
  void set_onu_update(const ImagePieces &pieces) { onu_update_ = pieces; }

  // Texts and lists that fields point to live as long as the layout.

  const char *keep(std::string text) { return texts_.emplace_back(std::move(text)).c_str(); }
  std::span<const ValueName> keep(std::vector<ValueName> values) {
    return values_.emplace_back(std::move(values));
  }
  std::span<const Field> keep(std::vector<Field> fields) {
    return fields_.emplace_back(std::move(fields));
  }

 private:
  Layout();
  void forget_meanings();

  std::string name_;
  std::deque<std::string> texts_;
  std::deque<std::vector<ValueName>> values_;
  std::deque<std::vector<Field>> fields_;
  std::deque<std::vector<Operation>> operations_;  ///< empty: those of the catalog
  std::vector<Family> families_;
  std::map<uint16_t, std::string> statuses_;
  std::string status_source_;
  std::optional<uint16_t> end_of_table_;
  std::optional<RowSelection> row_selection_;
  std::optional<ImagePieces> olt_update_;
  std::optional<ImagePieces> onu_update_;
  std::span<const Field> target_fields_;
};

}  // namespace olt::catalog

#endif
