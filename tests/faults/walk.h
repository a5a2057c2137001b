/// Walks a scenario through every call that can fail, the first time it is made, the second time,
/// and so on until the scenario ends before the fault was due.
#ifndef OLT_TESTS_FAULTS_WALK_H
#define OLT_TESTS_FAULTS_WALK_H

#include <functional>
#include <set>
#include <string>

#include "tests/faults/strike.h"

namespace olt::faults {

/// The scenario must go as if nothing had happened: interruptions and short transfers are no
/// failures.
bool is_harmless(const Plan &plan);

/// There was no memory or no descriptor.
bool is_shortage(const Plan &plan);

std::string describe(const Plan &plan);

/// Servers then have something to raise.
void lower_descriptor_limit();

struct Walk {
  /// Runs the scenario under the plan and looks at what it left. @return whether the fault struck.
  std::function<bool(const Plan &)> scenario;
  /// Whether allocations fail, too.
  bool allocations = true;
  /// The calls that the scenario makes and that can fail, exactly.
  std::set<std::string> calls;
  /// Whether faults that last are tried, too.
  bool lasting = true;
};

/// Fails the test when the scenario does, and when it makes other calls than it should.
void run(const Walk &walk);

}  // namespace olt::faults

#endif
