/* With Check. A failure that the mock reports ends the test that runs. */
#include <check.h>
#include <oltmock.h>
#include <stdlib.h>

#include "idle_port.h"

static void fail_test(void *context, const char *text) {
  (void)context;
  ck_abort_msg("%s", text);
}

static void set_up(void) {
  olt_mock_on_failure(fail_test, NULL);
}

static void tear_down(void) {
  olt_mock_finish();
}

START_TEST(is_switched_off) {
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=down");
  olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=off");
  olt_mock_expect("save_system_config", NULL);
  ck_assert_int_eq(switch_off_idle_port(1, 3), IDLE_PORT_OFF);
}
END_TEST

START_TEST(is_left_alone_when_it_has_a_link) {
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=up");
  ck_assert_int_eq(switch_off_idle_port(1, 3), IDLE_PORT_IN_USE);
}
END_TEST

START_TEST(is_not_saved_when_the_module_refuses) {
  olt_mock_expect("get_port_link_state", NULL);
  olt_mock_refuse(olt_mock_expect("set_port_enable", NULL), 1, 3);
  ck_assert_int_eq(switch_off_idle_port(1, 3), IDLE_PORT_FAILED);
}
END_TEST

int main(void) {
  TCase *idle_port = tcase_create("idle_port");
  tcase_add_checked_fixture(idle_port, set_up, tear_down);
  tcase_add_test(idle_port, is_switched_off);
  tcase_add_test(idle_port, is_left_alone_when_it_has_a_link);
  tcase_add_test(idle_port, is_not_saved_when_the_module_refuses);
  Suite *suite = suite_create("idle_port");
  suite_add_tcase(suite, idle_port);
  SRunner *runner = srunner_create(suite);
  srunner_run_all(runner, CK_NORMAL);
  int failed = srunner_ntests_failed(runner);
  srunner_free(runner);
  return failed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
