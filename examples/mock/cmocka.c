/* With cmocka. A failure that the mock reports ends the test that runs. */
/* cmocka.h needs the headers before it. */
/* clang-format off */
#include <setjmp.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <cmocka.h>
/* clang-format on */
#include <oltmock.h>

#include "idle_port.h"

static void fail_test(void *context, const char *text) {
  (void)context;
  fail_msg("%s", text);
}

static int set_up(void **state) {
  (void)state;
  olt_mock_on_failure(fail_test, NULL);
  return 0;
}

static int tear_down(void **state) {
  (void)state;
  return olt_mock_finish();
}

static void is_switched_off(void **state) {
  (void)state;
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=down");
  olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=off");
  olt_mock_expect("save_system_config", NULL);
  assert_int_equal(switch_off_idle_port(1, 3), IDLE_PORT_OFF);
}

static void is_left_alone_when_it_has_a_link(void **state) {
  (void)state;
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=up");
  assert_int_equal(switch_off_idle_port(1, 3), IDLE_PORT_IN_USE);
}

static void is_not_saved_when_the_module_does_not_answer(void **state) {
  (void)state;
  olt_mock_expect("get_port_link_state", NULL);
  olt_mock_fail(olt_mock_expect("set_port_enable", NULL), 1, 0x00010000); /* a time-out */
  assert_int_equal(switch_off_idle_port(1, 3), IDLE_PORT_FAILED);
}

int main(void) {
  const struct CMUnitTest tests[] = {
      cmocka_unit_test_setup_teardown(is_switched_off, set_up, tear_down),
      cmocka_unit_test_setup_teardown(is_left_alone_when_it_has_a_link, set_up, tear_down),
      cmocka_unit_test_setup_teardown(is_not_saved_when_the_module_does_not_answer, set_up,
                                      tear_down),
  };
  return cmocka_run_group_tests(tests, NULL, NULL);
}
