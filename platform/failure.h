/// How the serving side fails: with one line that says what was wrong and what is expected.
#ifndef OLT_PLATFORM_FAILURE_H
#define OLT_PLATFORM_FAILURE_H

#include <cstring>
#include <stdexcept>
#include <string>

namespace olt::platform {

class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A failure of the system: "WHAT: " and the text of the error number.
inline Failure system_failure(const std::string &what, int error) {
  return Failure(what + ": " + std::strerror(error));
}

}  // namespace olt::platform

#endif
