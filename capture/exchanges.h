/// The exchanges of a capture: requests with their answers.
#ifndef OLT_CAPTURE_EXCHANGES_H
#define OLT_CAPTURE_EXCHANGES_H

#include <map>
#include <optional>
#include <string>

#include "capture/reader.h"

namespace olt::capture {

/// Both packets; one may be missing.
struct Exchange {
  std::optional<Packet> request;
  std::optional<Packet> answer;

  const Packet &any() const { return request ? *request : *answer; }
};

/// Puts the packets of each exchange together, in the order in which the exchanges ended.
class Exchanges {
 public:
  explicit Exchanges(Reader &reader) : reader_(reader) {}

  /// Nothing at the end. Throws BadInput with the place.
  std::optional<Exchange> next();

 private:
  Reader &reader_;
  std::map<Packet::Identity, Packet> waiting_;
};

/// The name under which OLT_CAPTURE_FILES keeps the listing that the exchange's reply names.
std::string kept_listing_name(const Packet &packet);
inline constexpr size_t kMaxKeptListing = 4'194'304;

}  // namespace olt::capture

#endif
