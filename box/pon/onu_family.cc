#include "box/pon/onu_family.h"

namespace olt::box {

OnuFamily::OnuFamily(std::string_view name, OnuState &state, Tables tables)
    : name_(name), state_(state), tables_(std::move(tables)) {}

void OnuFamily::configuration(Archive &archive) {
  for (RecordTable &table : tables_) {
    table.describe(archive,
                   [this](Scope scope, const OnuPart &part) { return state_.has(scope, part); });
  }
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
