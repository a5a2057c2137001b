#include "tests/capture/planted_messages.h"

#include <fmt/format.h>

#include "catalog/message_fields.h"

namespace olt::test {

namespace {

constexpr size_t kRecordsOfList = 3;

}  // namespace

PlantedMessages::PlantedMessages() {
  for (const catalog::Family &family : catalog::families()) {
    for (const catalog::Operation &operation : family.operations) {
      add(operation, operation.request);
      add(operation, operation.reply);
    }
  }
}

void PlantedMessages::add(const catalog::Operation &operation, const catalog::Message &message) {
  std::string bytes(2'000, 'x');
  size_t before = planted_;
  for (const catalog::MessageField &placed : fields_of(operation, message)) {
    if (placed.field.secret) plant(bytes, placed.field.offset);
    for (const catalog::Field &inner : placed.field.record) {
      for (size_t i = 0; inner.secret && i < kRecordsOfList; ++i)
        plant(bytes, placed.field.offset + i * placed.field.record_size + inner.offset);
    }
  }
  if (planted_ != before) messages_.push_back({operation.address.message_type, bytes});
}

void PlantedMessages::plant(std::string &bytes, size_t offset) {
  bytes.replace(offset, kPlanted.size(), kPlanted);
  ++planted_;
}

std::set<uint32_t> PlantedMessages::types() const {
  std::set<uint32_t> types;
  for (const Message &message : messages_) types.insert(message.type);
  return types;
}

std::string PlantedMessages::lines() const {
  std::string lines;
  for (const Message &message : messages_) {
    lines += fmt::format("{} ", message.type);
    for (char byte : message.bytes) lines += fmt::format("{:02x}", static_cast<uint8_t>(byte));
    lines += '\n';
  }
  return lines;
}

}  // namespace olt::test
