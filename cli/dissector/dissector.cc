#include "cli/dissector/dissector.h"

#include <fmt/format.h>

#include <map>
#include <string_view>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "cli/text/field_forms.h"
#include "oltmgmt.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::Message;
using catalog::Operation;
using catalog::Part;

namespace {

constexpr const char *kCode =
#include "cli/dissector/oltmgmt.lua.inc"
    ;

constexpr uint32_t kTransportResults[] = {
    OLT_TRANSPORT_OK,       OLT_TRANSPORT_TIMED_OUT, OLT_TRANSPORT_NO_MODULE,
    OLT_TRANSPORT_LOST,     OLT_TRANSPORT_REFUSED,   OLT_TRANSPORT_GARBLED,
    OLT_TRANSPORT_TOO_LONG, OLT_TRANSPORT_BAD_CALL,  OLT_TRANSPORT_NO_RESOURCES,
};

std::string lua_text(std::string_view text) {
  std::string literal = "\"";
  for (char character : text) {
    bool is_plain = character >= ' ' && character <= '~' && character != '"' && character != '\\';
    literal += is_plain ? std::string(1, character)
                        : fmt::format("\\{:03}", static_cast<uint8_t>(character));
  }
  return literal += '"';
}

/// Tables that stand once, however often they are used: f[1] = {...}.
class Shared {
 public:
  explicit Shared(const char *name) : name_(name) {}

  /// @return the expression for a table with these members
  std::string add(const std::string &members) {
    auto [found, is_new] = numbers_.try_emplace(members, numbers_.size() + 1);
    std::string table = fmt::format("{}[{}]", name_, found->second);
    if (is_new) lines_ += fmt::format("{} = {{{}}}\n", table, members);
    return table;
  }

  const std::string &lines() const { return lines_; }

 private:
  const char *name_;
  std::map<std::string, size_t> numbers_;
  std::string lines_;
};

class Tables {
 public:
  explicit Tables(const Layout &layout) {
    for (const catalog::Family &family : layout.families()) {
      for (const Operation &operation : family.operations)
        if (operation.address.sends()) add(operation);
    }
  }

  std::string shared() const { return fields_.lines() + messages_.lines() + modules_.lines(); }

  /// By message type.
  std::string operations() const {
    std::string lists;
    for (const auto &[type, list] : operations_)
      lists += fmt::format("[{}]={{\n{}}},\n", type, list);
    return lists;
  }

 private:
  void add(const Operation &operation) {
    std::string request = message(operation, operation.request);
    std::string reply = message(operation, operation.reply);
    operations_[operation.address.message_type] +=
        fmt::format("  {{name={}{}, request={}, reply={}}},\n", lua_text(operation.name),
                    modules_of(operation.address), request, reply);
  }

  /// Left out when any may be asked.
  std::string modules_of(const catalog::Address &address) {
    std::string modules;
    for (uint8_t module : {address.module, address.second_module})
      if (module != catalog::Address::kNone) modules += fmt::format("[{}]=true, ", module);
    return modules.empty() ? "" : ", modules=" + modules_.add(modules);
  }

  std::string message(const Operation &operation, const Message &message) {
    std::string constants;
    for (const Part &part : message.parts())
      if (part.origin == catalog::Origin::kConstant) constants += constant(part);
    bool is_open = message.part_count > 0 && message.parts().back().reaches_the_end();
    std::string fields;
    for (const catalog::MessageField &placed : fields_of(operation, message))
      fields += place(placed.field);
    if (!constants.empty()) constants = fmt::format(", constants={{{}}}", constants);
    return messages_.add(fmt::format("length={}, is_open={}{}, fields={{{}}}",
                                     message.fixed_length(), is_open, constants, fields));
  }

  static std::string constant(const Part &part) {
    std::string bytes(part.width, '\0');
    for (size_t i = 0; i < sizeof part.constant && i < part.width; ++i)
      bytes[i] = static_cast<char>(part.constant >> (8 * i));
    return fmt::format("{{{}, {}}}, ", part.offset, lua_text(bytes));
  }

  /// A field with its offset.
  std::string place(const Field &field) {
    return fmt::format("{{{}, {}}}, ", field.offset, fields_.add(members_of(field)));
  }

  std::string members_of(const Field &field) {
    std::string members =
        fmt::format("name={}, kind={}", lua_text(field.name), lua_text(form_of(field.kind).name));
    if (field.width != Field::kToTheEnd) members += fmt::format(", width={}", field.width);
    if (field.role == catalog::Role::kReserved) members += ", is_reserved=true";
    if (field.unit != nullptr) members += fmt::format(", unit={}", lua_text(field.unit));
    if (field.kind == FieldKind::kSigned) members += fmt::format(", decimals={}", field.decimals);
    if (!field.values.empty()) members += fmt::format(", values={{{}}}", values_of(field));
    if (field.kind == FieldKind::kRecords) {
      std::string record;
      for (const Field &inner : field.record) record += place(inner);
      members += fmt::format(", record_size={}, record={{{}}}", field.record_size, record);
    }
    return members;
  }

  static std::string values_of(const Field &field) {
    std::string values;
    for (const catalog::ValueName &value : field.values)
      values += fmt::format("{{{}, {}}}, ", value.value, lua_text(value.name));
    return values;
  }

  Shared fields_{"f"};
  Shared messages_{"m"};
  Shared modules_{"n"};
  std::map<uint32_t, std::string> operations_;
};

std::string modules_table() {
  std::string rows;
  for (const catalog::Module &module : catalog::modules())
    rows += fmt::format("[{}]={}, ", module.number, lua_text(module.name));
  return rows;
}

std::string results_table() {
  std::string rows;
  for (uint32_t result : kTransportResults) {
    rows += fmt::format("  [0x{:08x}]={},\n", result,
                        lua_text(olt_transport_text(static_cast<int32_t>(result))));
  }
  return rows;
}

std::string statuses_table(const Layout &layout) {
  std::string rows;
  for (const auto &[status, text] : layout.statuses())
    rows += fmt::format("  [{}]={},\n", status, lua_text(text));
  return rows;
}

}  // namespace

std::string dissector_of(const Layout &layout) {
  const Tables tables(layout);
  return fmt::format(
      "-- Written by 'oltctl dissector' of version {} from the layout {}.\n\n"
      "local f, m, n = {{}}, {{}}, {{}}\n{}"
      "local catalog = {{\nmodules={{{}}},\nresults={{\n{}}},\nstatuses={{\n{}}},\n"
      "messages=m,\noperations={{\n{}}}}}\n\n{}",
      OLTMGMT_VERSION, layout.name(), tables.shared(), modules_table(), results_table(),
      statuses_table(layout), tables.operations(), kCode);
}

}  // namespace olt::cli
