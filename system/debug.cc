#include <stddef.h>

#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_debug_value) == 12 && offsetof(olt_debug_value, debug_value) == 8);
static_assert(sizeof(olt_switch_debug) == 28 && offsetof(olt_switch_debug, debug_value) == 24);

namespace {

constexpr uint8_t kOamModule = 18;
constexpr uint8_t kLogModule = 22;

/// The log module decides: the main module gets only what the log module accepted.
[[gnu::noinline]] int32_t post_log_then_main(uint8_t type, uint32_t value) {
  int32_t result = post_value(value, {type, kLogModule});
  return result != 0 ? result : post_value(value, type);
}

}  // namespace

int32_t set_debug_enable(uint32_t module, uint32_t value) {
  return post_value(value, {2, static_cast<uint8_t>(module)});
}

int32_t show_memory_info(uint32_t module, char name[32]) {
  return fetch_range({3, static_cast<uint8_t>(module)}, kLeadingName, name);
}

int32_t get_olt_support_oam(uint32_t *value) {
  return fetch({4, kOamModule}, value);
}

int32_t process_debug_value(olt_debug_value *value) {
  return value->debug_op != 0 ? post(39, *value) : fetch_over(39, *value, value->debug_value);
}

int32_t process_switchdebug_value(olt_switch_debug *value) {
  return value->debug_op != 0 ? post(40, *value) : fetch_over(40, *value, value->debug_value);
}

int32_t get_system_loginfofile(char name[32], uint32_t value) {
  return fetch_range({81, kLogModule}, value, kLeadingName, name);
}

int32_t set_system_logfilesize(uint32_t value) {
  return post_log_then_main(82, value);
}

int32_t set_system_loglevel(uint32_t value) {
  return post_log_then_main(83, value);
}
