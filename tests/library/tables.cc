#include "tests/library/tables.h"

namespace olt::test {

const Table *all_tables() {
  static const Table tables[] = {system_table(), {nullptr, 0}};
  return tables;
}

}  // namespace olt::test
