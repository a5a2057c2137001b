/// Messages with something planted in every field that the catalog calls a secret.
#ifndef OLT_TESTS_CAPTURE_PLANTED_MESSAGES_H
#define OLT_TESTS_CAPTURE_PLANTED_MESSAGES_H

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"

namespace olt::test {

inline constexpr std::string_view kPlanted = "PLANT";

class PlantedMessages {
 public:
  struct Message {
    uint32_t type;
    std::string bytes;
  };

  PlantedMessages();

  const std::vector<Message> &messages() const { return messages_; }
  size_t planted() const { return planted_; }
  std::set<uint32_t> types() const;
  /// As capture_check takes them.
  std::string lines() const;

 private:
  void add(const catalog::Operation &operation, const catalog::Message &message);
  void plant(std::string &bytes, size_t offset);

  std::vector<Message> messages_;
  size_t planted_ = 0;
};

}  // namespace olt::test

#endif
