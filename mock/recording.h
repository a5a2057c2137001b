/// What a capture answers, for the mock.
#ifndef OLT_MOCK_RECORDING_H
#define OLT_MOCK_RECORDING_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "base/text.h"
#include "capture/exchanges.h"
#include "catalog/operation.h"
#include "catalog/unspecified_bytes.h"

namespace olt::mock {

/// How an exchange ended.
struct Recorded {
  int32_t result = 0;
  uint16_t status = 0;
  Bytes reply;
};

/// The answers of a capture by request: those to equal requests in turn, then the last one again.
class Recording {
 public:
  /// Adds the exchanges of a capture, all or none. Throws BadInput.
  void add(const std::string &path);

  /// The next answer to the request, or null.
  const Recorded *next(uint32_t message_type, uint32_t module, ByteView request);

  void clear() { answers_.clear(); }

 private:
  /// Message type, module, whether secrets are masked, and the bytes that are compared.
  using Key = std::tuple<uint32_t, uint32_t, bool, Bytes>;
  struct Answers {
    std::vector<Recorded> all;
    size_t given = 0;
  };

  catalog::UnspecifiedBytes unspecified_;
  std::map<Key, Answers> answers_;
};

/// The replies to an operation in a capture, in the order in which they came, at least one. Throws
/// BadInput.
std::vector<Bytes> recorded_replies(const std::string &path, const catalog::Operation &operation);

}  // namespace olt::mock

#endif
