#include "cli/catalog_json.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "cli/input/argument_forms.h"
#include "cli/output/format.h"
#include "cli/search.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

using catalog::Address;
using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::Layout;
using catalog::Message;
using catalog::MessageField;
using catalog::Operation;
using catalog::Origin;
using catalog::Part;
using nlohmann::ordered_json;

namespace {

// In the order of the enumerations.
constexpr const char *kOrigins[] = {"argument", "constant", "zeros", "any"};
constexpr const char *kRoles[] = {"plain", "reserved", "selector", "row_name"};
constexpr const char *kDirections[] = {"in", "out", "in-out"};

template <typename Enumeration>
const char *name_of(std::span<const char *const> names, Enumeration value) {
  return names[static_cast<size_t>(value)];
}

ordered_json or_null(const char *text) {
  return text == nullptr ? ordered_json() : ordered_json(text);
}

/// Where no limit is set, null.
ordered_json limit(uint32_t max) {
  return max == UINT32_MAX ? ordered_json() : ordered_json(max);
}

/// Null up to the end of the message.
ordered_json width_json(uint32_t width) {
  return width == Field::kToTheEnd ? ordered_json() : ordered_json(width);
}

template <typename Items, typename ToJson>
ordered_json list_of(const Items &items, ToJson to_json) {
  ordered_json list = ordered_json::array();
  for (const auto &item : items) list.push_back(to_json(item));
  return list;
}

ordered_json value_json(const catalog::ValueName &value) {
  return {{"value", value.value}, {"name", value.name}};
}

ordered_json field_json(const Field &field) {
  ordered_json record;
  if (!field.record.empty()) {
    record = {{"size", field.record_size}, {"fields", list_of(field.record, field_json)}};
  }
  return {{"name", field.name},
          {"offset", field.offset},
          {"width", width_json(field.width)},
          {"kind", form_of(field.kind).name},
          {"role", name_of(kRoles, field.role)},
          {"unit", or_null(field.unit)},
          {"decimals", field.decimals},
          {"max", limit(field.max)},
          {"values", list_of(field.values, value_json)},
          {"secret", field.secret},
          {"record", record}};
}

/// Without the last field when it has no end of its own.
uint32_t size_of_record(const Argument &argument) {
  if (argument.fields.empty()) return argument.size;
  const Field &last = argument.fields.back();
  return last.offset + last.width;
}

ordered_json record_json(const Argument &argument) {
  return {{"name", argument.record_name},
          {"size", size_of_record(argument)},
          {"fields", list_of(argument.fields, field_json)}};
}

ordered_json argument_json(const Argument &argument) {
  return {{"name", argument.name},
          {"direction", name_of(kDirections, argument.direction)},
          {"passed", form_of(argument).name},
          {"size", argument.size},
          {"kind", form_of(argument.form).name},
          {"record",
           argument.record_name.empty() ? ordered_json() : ordered_json(argument.record_name)},
          {"unit", or_null(argument.unit)},
          {"max", limit(argument.max)},
          {"values", list_of(argument.values, value_json)},
          {"secret", argument.secret},
          {"optional", argument.is_input() && argument.may_be_left_out()}};
}

ordered_json part_json(const Operation &operation, const Part &part) {
  bool is_argument = part.origin == Origin::kArgument;
  auto only = [](bool applies, const ordered_json &value) {
    return applies ? value : ordered_json();
  };
  return {{"offset", part.offset},
          {"width", width_json(part.width)},
          {"origin", name_of(kOrigins, part.origin)},
          {"argument", only(is_argument, operation.arguments()[part.argument].name)},
          {"from", only(is_argument, part.from)},
          {"constant", only(part.origin == Origin::kConstant, part.constant)},
          {"text", part.is_text},
          {"with_zero", part.with_zero},
          {"rest", only(part.is_text, name_of(kOrigins, part.rest))}};
}

ordered_json message_field_json(const MessageField &placed) {
  ordered_json object = field_json(placed.field);
  object["argument"] = or_null(placed.argument == nullptr ? nullptr : placed.argument->name);
  return object;
}

ordered_json message_json(const Operation &operation, const Message &message) {
  if (!operation.address.sends()) return nullptr;
  return {{"parts",
           list_of(message.parts(), [&](const Part &part) { return part_json(operation, part); })},
          {"read_if_zero", or_null(message.read_if_zero)},
          {"fields", list_of(fields_of(operation, message), message_field_json)}};
}

ordered_json modules_of(const Address &address) {
  ordered_json modules = ordered_json::array();
  if (!address.sends()) return modules;
  if (address.module == Address::kNamedByCaller) return "caller";
  modules.push_back(address.module);
  if (address.second_module != Address::kNone) modules.push_back(address.second_module);
  return modules;
}

const Family &family_of(const Operation &operation, const Layout &layout) {
  auto families = layout.families();
  return *std::find_if(families.begin(), families.end(), [&operation](const Family &family) {
    const Operation *first = family.operations.data();
    return &operation >= first && &operation < first + family.operations.size();
  });
}

/// A record that several arguments have stands once.
void add_records(const Operation &operation, ordered_json &records) {
  for (const Argument &argument : operation.arguments()) {
    if (argument.record_name.empty()) continue;
    bool is_there = std::any_of(records.begin(), records.end(), [&](const ordered_json &record) {
      return record["name"] == argument.record_name;
    });
    if (!is_there) records.push_back(record_json(argument));
  }
}

ordered_json statuses_json(const Layout &layout) {
  return list_of(layout.statuses(), [](const auto &named) {
    return ordered_json{{"status", named.first}, {"text", named.second}};
  });
}

}  // namespace

ordered_json operation_json(const Operation &operation, const Layout &layout) {
  const Address &address = operation.address;
  auto if_sent = [&address](uint32_t number) {
    return address.sends() ? ordered_json(number) : ordered_json();
  };
  return {{"name", operation.name},
          {"family", family_of(operation, layout).title},
          {"summary", operation.summary},
          {"message_type", if_sent(address.message_type)},
          {"modules", modules_of(address)},
          {"timeout", if_sent(address.timeout)},
          {"outcome",
           {{"minus_one", or_null(operation.outcome.minus_one)},
            {"minus_two", or_null(operation.outcome.minus_two)},
            {"count", or_null(operation.outcome.count)}}},
          {"reads_before", or_null(operation.present.getter)},
          {"takes_all", operation.takes_all},
          {"destructive", operation.destructive},
          {"arguments", list_of(operation.arguments(), argument_json)},
          {"request", message_json(operation, operation.request)},
          {"reply", message_json(operation, operation.reply)}};
}

ordered_json catalog_json(std::string_view word, const Layout &layout) {
  require_listed(word);
  ordered_json families = ordered_json::array();
  ordered_json operations = ordered_json::array();
  ordered_json records = ordered_json::array();
  for (const Family &family : layout.families()) {
    ordered_json names = ordered_json::array();
    for (const Operation &operation : family.operations) {
      if (!is_about(operation, word)) continue;
      names.push_back(operation.name);
      operations.push_back(operation_json(operation, layout));
      add_records(operation, records);
    }
    if (!names.empty()) families.push_back({{"title", family.title}, {"operations", names}});
  }
  return {
      {"version", kJsonVersion},
      {"library", OLTMGMT_VERSION},
      {"kinds", list_of(field_forms(),
                        [](const FieldForm &form) {
                          return ordered_json{{"name", form.name}, {"json", form.json_type}};
                        })},
      {"modules", list_of(catalog::modules(),
                          [](const catalog::Module &module) {
                            return ordered_json{{"module", module.number}, {"name", module.name}};
                          })},
      {"statuses", statuses_json(layout)},
      {"families", families},
      {"records", records},
      {"operations", operations}};
}

}  // namespace olt::cli
