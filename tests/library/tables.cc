#include "tests/library/tables.h"

namespace olt::test {

const Table *all_tables() {
  static const Table tables[] = {system_table(), switch_table(), pon_table(),
                                 ont_table(),    snmp_table(),   {nullptr, 0}};
  return tables;
}

}  // namespace olt::test
