#include "catalog/layout.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "box/wire/records.h"
#include "box/wire/status.h"
#include "catalog/records.h"

namespace olt::catalog {

namespace {

constexpr ImagePieces kBoxPieces = {.head_size = sizeof(box::UpdatePiece),
                                    .length_offset = offsetof(box::UpdatePiece, total),
                                    .position_offset = offsetof(box::UpdatePiece, offset),
                                    .piece_size = 65'536,
                                    .max_size = box::kMaxImage,
                                    .progress_offset = offsetof(box::UpdateProgress, progress),
                                    .complete = box::kUpdateComplete,
                                    .failed = box::kUpdateFailed};

bool is_block(const Argument &argument) {
  return argument.kind == Kind::kBlock || argument.kind == Kind::kReplyBlock;
}

/// Of an argument that can have fields.
std::optional<Extent> extent_of(const Argument &argument) {
  if (argument.is_word()) return Extent{.size = argument.size, .word = argument.name};
  switch (argument.kind) {
    case Kind::kValue:
      if (argument.record_type.empty() || argument.form == FieldKind::kPadded) return std::nullopt;
      return Extent{.size = argument.size};
    case Kind::kEntries:
      return Extent{.size = argument.size};
    case Kind::kHeadedBlock:
      return Extent{.size = argument.size, .is_open = true};
    case Kind::kStream:
    case Kind::kBlock:
    case Kind::kReplyBlock:
      return Extent{.is_open = true};
    default:
      return std::nullopt;
  }
}

bool is_called(const Operation &operation, const Argument &argument, std::string_view name) {
  if (!argument.is_word()) return name == argument.record_type || name == argument.record_name;
  std::string_view first = operation.name;
  return name.starts_with(first) && name.substr(first.size()).starts_with('.') &&
         name.substr(first.size() + 1) == argument.name;
}

/// Of values that may mean something else now.
void forget_examples(Operation &operation) {
  operation.example = nullptr;
  operation.example_after = nullptr;
  for (Argument &argument : operation.argument_room) argument.example = nullptr;
}

void set_meaning(Argument &word, const Field &field) {
  word.form = field.kind;
  word.secret = word.secret || field.secret;
  word.values = field.values;
  word.unit = field.unit;
  word.decimals = field.decimals;
}

void forget_meaning(Argument &word) {
  set_meaning(word, {.name = word.name, .offset = 0, .width = 4, .kind = FieldKind::kNumber});
}

void give(Argument &argument, std::span<const Field> fields) {
  argument.fields = fields;
  if (argument.kind == Kind::kEntries) {
    argument.form = fields.empty() ? FieldKind::kBytes : FieldKind::kRecords;
  }
  if (!is_block(argument)) return;
  argument.size = 0;
  for (const Field &field : fields)
    argument.size = std::max(argument.size, field.offset + field.width);
}

/// What the message's record says of the words that are sent in it, or read from it.
void set_meanings(Operation &operation, const Message &message) {
  for (const Part &part : message.parts()) {
    Argument &argument = operation.argument_room[part.argument];
    if (part.origin != Origin::kArgument || !argument.is_word()) continue;
    forget_meaning(argument);
    for (const Field &field : message.record) {
      if (field.offset == part.offset && field.width == argument.size) set_meaning(argument, field);
    }
  }
}

void set_fields(Operation &operation, std::string_view name, std::span<const Field> fields) {
  for (Argument &argument : std::span(operation.argument_room).first(operation.argument_count)) {
    if (!is_called(operation, argument, name) || !extent_of(argument)) continue;
    forget_examples(operation);
    argument.is_word() ? set_meaning(argument, fields.front()) : give(argument, fields);
  }
  for (Message *message : {&operation.request, &operation.reply}) {
    if (message->record_type != name) continue;
    message->record = fields;
    forget_examples(operation);
    set_meanings(operation, *message);
  }
}

}  // namespace

const Layout &Layout::box() {
  static const Layout instance;
  return instance;
}

const Layout &Layout::contract() {
  static const Layout instance = [] {
    Layout layout("none", box());
    layout.forget_meanings();
    return layout;
  }();
  return instance;
}

Layout::Layout()
    : name_("box"),
      families_(catalog::families().begin(), catalog::families().end()),
      status_source_("oltbox"),
      end_of_table_(static_cast<uint16_t>(box::Status::kNotFound)),
      row_selection_({.target_offset = offsetof(box::OntTarget, target_kind),
                      .record_offset = offsetof(box::VlanRow, selector),
                      .this_row = box::kThisRow,
                      .next_row = box::kNextRow}),
      olt_update_(kBoxPieces),
      onu_update_(kBoxPieces),
      target_fields_(kBoxTargetFields) {
  for (uint16_t status = 0; status <= static_cast<uint16_t>(box::Status::kOffline); ++status) {
    statuses_[status] = box::status_text(status);
  }
}

Layout::Layout(std::string name, const Layout &base)
    : name_(std::move(name)),
      statuses_(base.statuses_),
      status_source_(base.status_source_),
      end_of_table_(base.end_of_table_),
      row_selection_(base.row_selection_),
      olt_update_(base.olt_update_),
      onu_update_(base.onu_update_),
      target_fields_(base.target_fields_) {
  for (const Family &family : base.families_) {
    operations_.emplace_back(family.operations.begin(), family.operations.end());
    families_.push_back({family.title, operations_.back()});
  }
}

void Layout::forget_meanings() {
  statuses_.clear();
  end_of_table_.reset();
  row_selection_.reset();
  olt_update_.reset();
  onu_update_.reset();
  target_fields_ = kNamedFieldsOf<olt_ont_target>;
  std::map<std::string_view, std::span<const Field>> named;
  for (std::vector<Operation> &operations : operations_) {
    for (Operation &operation : operations) {
      forget_examples(operation);
      for (Argument &argument :
           std::span(operation.argument_room).first(operation.argument_count)) {
        if (argument.is_word()) forget_meaning(argument);
        if (!argument.is_word() && catalog::extent_of(argument))
          give(argument, argument.named_fields);
        named.insert({argument.record_type, argument.named_fields});
      }
    }
  }
  for (std::vector<Operation> &operations : operations_) {
    for (Operation &operation : operations) {
      for (Message *message : {&operation.request, &operation.reply}) {
        message->record = named[message->record_type];
      }
    }
  }
}

const Operation *Layout::find(std::string_view name) const {
  for (const Family &family : families_) {
    for (const Operation &operation : family.operations) {
      if (operation.name == name) return &operation;
    }
  }
  return nullptr;
}

std::optional<Extent> Layout::extent_of(std::string_view name) const {
  for (const Family &family : families_) {
    for (const Operation &operation : family.operations) {
      for (const Argument &argument : operation.arguments()) {
        if (!is_called(operation, argument, name)) continue;
        if (std::optional<Extent> extent = catalog::extent_of(argument)) return extent;
      }
    }
  }
  return std::nullopt;
}

void Layout::set_fields(std::string_view name, std::vector<Field> fields) {
  std::span<const Field> kept = keep(std::move(fields));
  for (std::vector<Operation> &operations : operations_) {
    for (Operation &operation : operations) catalog::set_fields(operation, name, kept);
  }
  if (name == name_of_type<olt_ont_target>()) target_fields_ = kept;
}

void Layout::set_statuses(std::map<uint16_t, std::string> statuses) {
  statuses_ = std::move(statuses);
  status_source_ = name_;
}

}  // namespace olt::catalog
