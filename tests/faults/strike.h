/// Faults of the C library's calls. Linked into a program, these stand before the C library, for
/// the program and for all libraries that it loads.
#ifndef OLT_TESTS_FAULTS_STRIKE_H
#define OLT_TESTS_FAULTS_STRIKE_H

#include <atomic>
#include <string>

namespace olt::faults {

/// In the place of an error number: the call goes well, but moves a single byte.
inline constexpr int kShort = -1;

/// The name of a plan that is about allocations.
inline constexpr char kNew[] = "operator new";

struct Plan {
  std::string call;
  int error;     ///< what errno says, or kShort
  int nth;       ///< the first call that fails, from 1
  bool lasting;  ///< whether all that follow fail, too
};

/// While it exists and is not lifted, the plan strikes the calls of the thread that made it.
class Strike {
 public:
  explicit Strike(Plan plan);
  Strike(const Strike &) = delete;
  Strike &operator=(const Strike &) = delete;
  ~Strike();

  /// From any thread.
  void lift() { lifted_ = true; }
  bool reached() const { return reached_; }

  /// Whether this call is to fail; used by the calls.
  bool takes(const char *call);
  int error() const { return plan_.error; }

 private:
  const Plan plan_;
  int seen_ = 0;
  std::atomic<bool> reached_{false};
  std::atomic<bool> lifted_{false};
};

/// The strike of this thread that is to fail this call, or null.
Strike *strike_for(const char *call);

}  // namespace olt::faults

#endif
