/// The AgentX side: requests of the master agent, answered from what workers read.
///
/// One thread, that of run(), makes every call of net-snmp, which is not thread-safe, and never one
/// of the library, which blocks. Requests that the cache cannot answer are delegated to the worker
/// of their module. What has no answer within the deadline fails, for the objects of that module
/// alone, long before the master would give up the whole session.
#ifndef OLT_AGENT_SUBAGENT_H
#define OLT_AGENT_SUBAGENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "agent/objects.h"
#include "catalog/layout.h"

namespace olt::agent {

struct SubagentOptions {
  std::string socket;   ///< of the master agent: "unix:/var/agentx/master"
  std::string context;  ///< empty: the default one
  Oid root;
  bool is_writable = false;
  /// Between the exchanges that look for changes; 0: managers are not notified of any.
  std::chrono::milliseconds pace{0};
  /// Of standard tables that snmpd has, too: interfaces.
  std::string host_context = "olt";
  bool is_host_replaced = false;  ///< they are in the context of all others, instead of snmpd's
};

class Subagent {
 public:
  /// Blocks the signals that end run(), in threads that the caller starts later, too.
  Subagent(SubagentOptions options, const catalog::Layout &layout);
  Subagent(const Subagent &) = delete;
  Subagent &operator=(const Subagent &) = delete;
  ~Subagent();

  /// Serves until SIGTERM or SIGINT, or until SIGHUP if it may end then; unregisters everything.
  /// @return the signal
  int run(const std::function<bool()> &may_end);

  /// Whether no worker is in a call. It must not be destroyed while one is.
  bool is_idle() const;

 private:
  class Session;
  std::unique_ptr<Session> session_;
};

}  // namespace olt::agent

#endif
