/// snmpd, a simulated box and oltsnmp between them, in private folders, for a suite of tests.
#ifndef OLT_TESTS_AGENT_RUNNING_AGENT_H
#define OLT_TESTS_AGENT_RUNNING_AGENT_H

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "tests/end_to_end/running_box.h"
#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

/// A value as its octets in hex, or as a decimal number or an IP address; by the OID of its cell,
/// without a dot in front.
using Cells = std::map<std::string, std::string>;

class RunningAgent {
 public:
  /// The community "olt" may read and write.
  RunningAgent();
  RunningAgent(const RunningAgent &) = delete;
  RunningAgent &operator=(const RunningAgent &) = delete;
  ~RunningAgent();

  RunningBox &box() { return box_; }
  /// With two PON interfaces.
  void start_box(unsigned onus_per_interface = 3);

  /// Of snmpd: "127.0.0.1:PORT".
  std::string address() const;
  void start_snmpd();
  /// With SIGKILL.
  void kill_snmpd();

  /// Starts oltsnmp with further options, and waits until it serves.
  void start_agent(const std::vector<std::string> &options = {});
  /// Ends it with the signal. @return its Finished::status.
  int end_agent(int signal);
  pid_t agent() const { return agent_; }
  /// What oltsnmp has written.
  std::string log() const;
  /// Waits until the log holds the text that often. @return whether it does
  bool waits_for(const std::string &text, size_t count = 1) const;

  /// One of the net-snmp tools: the options, then the agent's address, then the names below the
  /// root, from a dot on; a name without one is a word of a SET.
  Finished snmp(const std::string &tool, const std::vector<std::string> &options,
                const std::vector<std::string> &names) const;
  /// "value", or what went wrong.
  std::string get(const std::string &name) const;
  /// The cells below a name, by snmpbulkwalk.
  Cells walk(const std::string &name) const;

  void start_snmptrapd();
  /// The notifications that it has had: "oltOnuUp's arc CELL = VALUE", "1 .1.85.1.34.1.1.1 = 1".
  std::vector<std::string> notifications() const;
  /// Waits for that many of them.
  std::vector<std::string> wait_for_notifications(size_t count) const;

 private:
  Folder folder_;
  RunningBox box_;
  unsigned port_;
  unsigned trap_port_;
  pid_t snmpd_ = -1;
  pid_t snmptrapd_ = -1;
  pid_t agent_ = -1;
};

}  // namespace olt::test

#endif
