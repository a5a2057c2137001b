/// How the answer to a request differs from the one that was recorded.
#ifndef OLT_CLI_COMPARE_DIFFERENCES_H
#define OLT_CLI_COMPARE_DIFFERENCES_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "capture/reader.h"
#include "catalog/layout.h"
#include "catalog/operation.h"
#include "cli/output/result.h"

namespace olt::cli {

/// What is compared beside the fields of a reply.
inline constexpr const char *kTransport = "transport";       ///< how the exchange ended
inline constexpr const char *kStatus = "status";             ///< the module's
inline constexpr const char *kReply = "reply";               ///< bytes that no field has
inline constexpr const char *kReplyLength = "reply_length";  ///< where no field shows it
inline constexpr const char *kListingPrefix = "listing.";    ///< before what a listing has

/// One side of a difference.
struct ComparedValue {
  std::string text;
  nlohmann::ordered_json json;
};

/// Of what is not there for nothing.
ComparedValue compared_text(const std::optional<std::string> &text);

struct FieldDifference {
  std::string field;  ///< one in a list as "vlans.first"
  size_t item = 0;    ///< of a list, from 1; 0: none
  ComparedValue recorded;
  ComparedValue now;
};

/// What an exchange brought.
struct Answer {
  int32_t result = 0;  ///< enum olt_transport_result
  uint16_t status = 0;
  Bytes reply;
};

/// Patterns with * ? and [...], each for the name of a field, or for OPERATION.FIELD.
class FieldPatterns {
 public:
  /// Throws Error when it stands for no field of the layout, and does not name one of a listing.
  void add(const std::string &pattern, const catalog::Layout &layout);
  bool cover(std::string_view operation, const std::string &field) const;

 private:
  std::vector<std::string> patterns_;
};

/// Names of listings are equal if both name a file or none does. Masked bytes, and those that were
/// cut off, are equal to any.
/// @param operation names the fields; null: none has a name
std::vector<FieldDifference> differences_of(const capture::Packet &recorded, const Answer &now,
                                            const catalog::Operation *operation,
                                            const catalog::Layout &layout, const Detail &detail);

/// The field in replies of the operation that names a listing, or null.
std::optional<catalog::Field> listing_field(const catalog::Operation &operation);

}  // namespace olt::cli

#endif
