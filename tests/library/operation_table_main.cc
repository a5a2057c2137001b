#include <stdio.h>
#include <string.h>

#include "tests/library/runner.h"

using namespace olt::test;

namespace {

void print_line(void * /*context*/, const char *line) {
  puts(line);
}

bool is_wanted(const Row &row, int name_count, char **names) {
  for (int i = 0; i != name_count; ++i)
    if (strcmp(names[i], row.operation) == 0) return true;
  return name_count == 0;
}

bool is_operation(const char *name) {
  for (const Table *table = all_tables(); table->rows != nullptr; ++table)
    for (size_t i = 0; i != table->count; ++i)
      if (strcmp(table->rows[i].operation, name) == 0) return true;
  static_cast<void>(fprintf(stderr, "operation_table: there is no operation called %s\n", name));
  return false;
}

bool passes(const Row &row) {
  Findings findings(print_line, nullptr);
  run_row(row, findings);
  return findings.count() == 0;
}

}  // namespace

/// Runs all rows, or those of the operations that are named.
int main(int argc, char **argv) {
  for (int i = 1; i < argc; ++i)
    if (!is_operation(argv[i])) return 2;
  unsigned passed = 0;
  unsigned failed = 0;
  for (const Table *table = all_tables(); table->rows != nullptr; ++table)
    for (size_t i = 0; i != table->count; ++i)
      if (is_wanted(table->rows[i], argc - 1, argv + 1))
        ++(passes(table->rows[i]) ? passed : failed);
  printf("%u passed, %u failed\n", passed, failed);
  return failed == 0 && passed != 0 ? 0 : 1;
}
