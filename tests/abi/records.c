/* Layout of the callers' records, in C and in C++. */
#include <assert.h>
#include <stdalign.h>
#include <stddef.h>

#include "oltmgmt.h"

#define ASSERT_RECORD(type, size, alignment)    \
  static_assert(sizeof(type) == (size), #type); \
  static_assert(alignof(type) == (alignment), #type)
#define ASSERT_FIELD(type, field, offset, size)             \
  static_assert(offsetof(type, field) == (offset), #field); \
  static_assert(sizeof(((type *)0)->field) == (size), #field)

ASSERT_RECORD(olt_system_network, 172, 1);
ASSERT_FIELD(olt_system_network, bytes, 0, 172);

ASSERT_RECORD(olt_sntp_config, 88, 1);
ASSERT_FIELD(olt_sntp_config, bytes, 0, 88);

ASSERT_RECORD(olt_user, 80, 4);
ASSERT_FIELD(olt_user, user_op, 0, 4);
ASSERT_FIELD(olt_user, user_index, 4, 4);
ASSERT_FIELD(olt_user, user_name, 8, 32);
ASSERT_FIELD(olt_user, user_password, 40, 32);
ASSERT_FIELD(olt_user, level_a, 72, 4);
ASSERT_FIELD(olt_user, level_b, 76, 4);

ASSERT_RECORD(olt_mac, 6, 1);
ASSERT_FIELD(olt_mac, bytes, 0, 6);

ASSERT_RECORD(olt_snmp_param, 136, 1);
ASSERT_FIELD(olt_snmp_param, bytes, 0, 136);

ASSERT_RECORD(olt_snmp_systeminfo, 196, 1);
ASSERT_FIELD(olt_snmp_systeminfo, bytes, 0, 196);

ASSERT_RECORD(olt_debug_value, 12, 4);
ASSERT_FIELD(olt_debug_value, debug_op, 0, 4);
ASSERT_FIELD(olt_debug_value, reserved_04, 4, 4);
ASSERT_FIELD(olt_debug_value, debug_value, 8, 4);

ASSERT_RECORD(olt_switch_debug, 28, 4);
ASSERT_FIELD(olt_switch_debug, debug_op, 0, 4);
ASSERT_FIELD(olt_switch_debug, reserved_04, 4, 20);
ASSERT_FIELD(olt_switch_debug, debug_value, 24, 2);
ASSERT_FIELD(olt_switch_debug, reserved_1a, 26, 2);
