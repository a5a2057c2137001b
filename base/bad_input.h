/// What a user got wrong.
#ifndef OLT_BASE_BAD_INPUT_H
#define OLT_BASE_BAD_INPUT_H

#include <stdexcept>

namespace olt {

/// what() is one line: the place, what is wrong and what is expected.
class BadInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace olt

#endif
