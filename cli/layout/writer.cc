#include "cli/layout/writer.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <string_view>

#include "cli/layout/reader.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::Operation;
using catalog::Role;
using nlohmann::ordered_json;

namespace {

ordered_json fields_json(std::span<const Field> fields);

ordered_json json_of_field(const Field &field) {
  ordered_json object = {{"name", field.name}, {"offset", field.offset}};
  if (field.width != Field::kToTheEnd) object["width"] = field.width;
  object["kind"] = form_of(field.kind).name;
  if (field.unit != nullptr) object["unit"] = field.unit;
  if (field.decimals != 0) object["decimals"] = field.decimals;
  for (const catalog::ValueName &value : field.values) {
    object["values"][fmt::to_string(value.value)] = value.name;
  }
  if (field.secret) object["secret"] = true;
  if (field.role == Role::kRowName) object["role"] = "row_name";
  if (field.role == Role::kReserved) object["role"] = "reserved";
  if (field.role == Role::kSelector) object["role"] = "selector";
  if (!field.record.empty()) {
    object["record"] = {{"size", field.record_size}, {"fields", fields_json(field.record)}};
  }
  return object;
}

ordered_json fields_json(std::span<const Field> fields) {
  ordered_json list = ordered_json::array();
  for (const Field &field : fields) list.push_back(json_of_field(field));
  return list;
}

bool means_something(const Argument &word) {
  return word.form != FieldKind::kNumber || !word.values.empty() || word.unit != nullptr ||
         word.secret;
}

void add_record(const Layout &layout, const Operation &operation, const Argument &argument,
                ordered_json &records) {
  if (argument.is_word()) {
    if (!means_something(argument)) return;
    std::string name = fmt::format("{}.{}", operation.name, argument.name);
    records[name] = ordered_json::array({json_of_field(argument.whole())});
    return;
  }
  std::string name(argument.record_name);
  if (argument.fields.empty() || !layout.extent_of(name)) return;
  if (!records.contains(name)) records[name] = fields_json(argument.fields);
}

ordered_json pieces_json(const catalog::ImagePieces &pieces) {
  return {{"head_size", pieces.head_size},
          {"length_offset", pieces.length_offset},
          {"position_offset", pieces.position_offset},
          {"piece_size", pieces.piece_size},
          {"max_size", pieces.max_size},
          {"progress_offset", pieces.progress_offset},
          {"complete", pieces.complete},
          {"failed", pieces.failed}};
}

/// A line for each field.
std::string records_text(const ordered_json &records) {
  std::string text;
  for (const auto &[name, fields] : records.items()) {
    text += fmt::format("{}\n    {}: [", text.empty() ? "" : ",", ordered_json(name).dump());
    for (size_t i = 0; i < fields.size(); ++i) {
      text += fmt::format("{}\n      {}", i == 0 ? "" : ",", fields[i].dump());
    }
    text += "\n    ]";
  }
  return fmt::format("{{{}\n  }}", text);
}

}  // namespace

std::string layout_text(const Layout &layout) {
  ordered_json records = ordered_json::object();
  for (const catalog::Family &family : layout.families()) {
    for (const Operation &operation : family.operations) {
      for (const Argument &argument : operation.arguments()) {
        add_record(layout, operation, argument, records);
      }
    }
  }
  std::string text =
      fmt::format("{{\n  \"version\": {},\n  \"name\": {},\n  \"records\": {}", kLayoutVersion,
                  ordered_json(layout.name()).dump(), records_text(records));
  auto add = [&text](const char *name, const ordered_json &value) {
    text += fmt::format(",\n  \"{}\": {}", name, value.dump());
  };
  ordered_json statuses = ordered_json::object();
  for (const auto &[status, meaning] : layout.statuses()) {
    statuses[fmt::to_string(status)] = meaning;
  }
  if (!statuses.empty()) add("statuses", statuses);
  if (layout.end_of_table()) add("end_of_table", *layout.end_of_table());
  if (const auto &selection = layout.row_selection()) {
    add("row_selection", {{"target_offset", selection->target_offset},
                          {"record_offset", selection->record_offset},
                          {"this", selection->this_row},
                          {"next", selection->next_row}});
  }
  if (const auto &pieces = layout.olt_update()) add("olt_update", pieces_json(*pieces));
  if (const auto &pieces = layout.onu_update()) add("onu_update", pieces_json(*pieces));
  return text + "\n}\n";
}

}  // namespace olt::cli
