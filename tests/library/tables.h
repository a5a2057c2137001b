/// The operation tables, one per family.
#ifndef OLT_TESTS_LIBRARY_TABLES_H
#define OLT_TESTS_LIBRARY_TABLES_H

#include "tests/library/operation_table.h"

namespace olt::test {

Table system_table();
Table switch_table();
Table pon_table();
Table ont_table();
Table snmp_table();

}  // namespace olt::test

#endif
