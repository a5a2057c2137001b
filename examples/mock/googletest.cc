// With GoogleTest. A failure that the mock reports fails the test that runs.
#include <gtest/gtest.h>
#include <oltmock.h>

#include "idle_port.h"

// The build says where the capture beside this file is.
#ifndef IDLE_PORT_CAPTURE
#define IDLE_PORT_CAPTURE "idle_port.pcapng"
#endif

class IdlePort : public testing::Test {
 protected:
  IdlePort() {
    olt_mock_on_failure([](void *, const char *text) { ADD_FAILURE() << text; }, nullptr);
  }
  ~IdlePort() override { olt_mock_finish(); }
};

TEST_F(IdlePort, IsSwitchedOff) {
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=down");
  olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=off");
  olt_mock_expect("save_system_config", nullptr);
  EXPECT_EQ(switch_off_idle_port(1, 3), IDLE_PORT_OFF);
}

TEST_F(IdlePort, IsLeftAloneWhenItHasALink) {
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=up");
  EXPECT_EQ(switch_off_idle_port(1, 3), IDLE_PORT_IN_USE);
}

TEST_F(IdlePort, IsNotSavedWhenTheModuleRefuses) {
  olt_mock_expect("get_port_link_state", nullptr);
  olt_mock_refuse(olt_mock_expect("set_port_enable", nullptr), 1, 3);
  EXPECT_EQ(switch_off_idle_port(1, 3), IDLE_PORT_FAILED);
}

// idle_port.pcapng holds the answers of a simulated box whose port 3 has no link. With this in
// unplugged.json: {"version":1,"olt":{"ports":[{"port":3,"plugged":false}]}}, it was recorded by
//
//   export LD_PRELOAD=/usr/local/lib/libolttrace.so OLT_CAPTURE=%p.pcapng
//   oltctl --fresh --topology unplugged.json -f - <<END
//   get_port_link_state 1 3
//   set_port_enable 1 3 off
//   save_system_config
//   END
TEST_F(IdlePort, IsSwitchedOffOnTheRecordedBox) {
  olt_mock_replay(IDLE_PORT_CAPTURE);
  EXPECT_EQ(switch_off_idle_port(1, 3), IDLE_PORT_OFF);
}
