#include "box/pon/onu_family.h"

namespace olt::box {

OnuFamily::OnuFamily(std::string_view name, OnuState &state, Tables tables)
    : name_(name), state_(state), tables_(std::move(tables)) {}

Json OnuFamily::configuration() const {
  Json value = Json::object();
  for (const RecordTable &table : tables_) value[std::string(table.key())] = table.to_json();
  return value;
}

void OnuFamily::configure(const Json &value, const std::string &place) {
  ObjectReader reader(value, place);
  for (RecordTable &table : tables_) {
    table.from_json(reader.get(table.key()), reader.place_of(table.key()),
                    [this](Scope scope, const OnuPart &part) { return state_.has(scope, part); });
  }
  configure_rest(reader);
  reader.finish();
}

void OnuFamily::restore_factory() {
  for (RecordTable &table : tables_) table.clear();
}

void OnuFamily::describe_configuration(Report &report) const {
  for (const RecordTable &table : tables_) {
    if (table.kept().empty()) continue;
    report.section(std::string(table.title()));
    for (const auto &[place, record] : table.kept()) {
      report.row({to_text(place), table.show(record)});
    }
  }
}

size_t OnuFamily::footprint() const {
  size_t size = sizeof *this;
  for (const RecordTable &table : tables_) size += table.footprint();
  return size;
}

}  // namespace olt::box
