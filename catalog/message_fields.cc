#include "catalog/message_fields.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace olt::catalog {

namespace {

constexpr uint32_t kWord = 4;

class Fields {
 public:
  Fields(const Operation &operation, const Message &message)
      : operation_(operation), message_(message) {
    for (const Field &field : message.record) add_of_record(field);
    for (const Part &part : message.parts()) {
      if (part.offset >= end_of_record() && part.origin == Origin::kArgument) add_argument(part);
    }
  }

  std::vector<MessageField> take() { return std::move(fields_); }

 private:
  uint32_t end_of_record() const {
    return message_.record.empty() ? 0
                                   : message_.record.back().offset + message_.record.back().width;
  }

  const Argument &argument_of(const Part &part) const {
    return operation_.arguments()[part.argument];
  }

  void add(Field field, uint32_t offset, const Argument *argument) {
    field.offset += offset;
    field.secret = field.secret || (argument != nullptr && argument->secret);
    fields_.push_back({field, argument});
  }

  /// A field that is a whole record of the caller shows that record's fields.
  void add_of_record(const Field &field) {
    auto parts = message_.parts();
    auto part = std::find_if(parts.begin(), parts.end(), [&field](const Part &one) {
      return one.offset == field.offset && one.origin == Origin::kArgument;
    });
    if (part == parts.end()) return add(field, 0, nullptr);
    const Argument &argument = argument_of(*part);
    bool is_whole = !argument.fields.empty() && argument.fields.data() != message_.record.data();
    is_whole ? add_argument(*part) : add(field, 0, &argument);
  }

  void add_argument(const Part &part) {
    const Argument &argument = argument_of(part);
    if (argument.is_list()) return add_list(part, argument);
    if (argument.fields.empty()) {
      Field whole = argument.whole();
      bool is_piece = !part.is_text && !part.reaches_the_end() && part.width < whole.width;
      if (is_piece) whole.kind = part.width <= kWord ? FieldKind::kNumber : FieldKind::kBytes;
      whole.width = part.width;
      return add(whole, part.offset, &argument);
    }
    for (const Field &field : argument.fields) add(field, part.offset, &argument);
  }

  /// Items up to the end of the message.
  void add_list(const Part &part, const Argument &argument) {
    Field items = argument.whole();
    items.width = Field::kToTheEnd;
    items.record = argument.fields;
    items.record_size = argument.fields.empty() ? 0 : argument.size;
    add(items, part.offset, &argument);
  }

  const Operation &operation_;
  const Message &message_;
  std::vector<MessageField> fields_;
};

}  // namespace

std::vector<MessageField> fields_of(const Operation &operation, const Message &message) {
  return Fields(operation, message).take();
}

bool changes(const Operation &operation, std::span<const uint8_t> request) {
  if (operation.always_changes()) return true;
  const char *name = operation.reply.read_if_zero;
  if (name == nullptr) return false;
  for (const MessageField &placed : fields_of(operation, operation.request)) {
    const Field &field = placed.field;
    if (std::string_view(field.name) != name || field.offset >= request.size()) continue;
    std::span<const uint8_t> bytes = request.subspan(field.offset);
    bytes = bytes.first(std::min<size_t>(field.width, bytes.size()));
    return std::any_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte != 0; });
  }
  return true;
}

}  // namespace olt::catalog
