/// Failures that end an action: one line that says what is wrong and what is expected.
#ifndef OLT_BASE_FAILURE_H
#define OLT_BASE_FAILURE_H

#include <cstring>
#include <stdexcept>
#include <string>

namespace olt {

class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A failed system call: "WHAT: " and the text of the error number.
inline Failure system_failure(const std::string &what, int error) {
  return Failure(what + ": " + std::strerror(error));
}

}  // namespace olt

#endif
