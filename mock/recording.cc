#include "mock/recording.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/bad_input.h"
#include "catalog/catalog.h"
#include "mock/message.h"

namespace olt::mock {

using capture::Exchange;
using capture::Packet;
using catalog::Operation;

namespace {

bool is_whole(const Packet &packet, size_t longest) {
  return packet.record.size() == packet.record_length && packet.record.size() <= longest;
}

/// Calls the function with the two packets of each exchange that is in the capture as it was.
template <typename Function>
void each_exchange(const std::string &path, Function function) {
  capture::Reader reader = capture::read_capture(path);
  capture::Exchanges exchanges(reader);
  while (std::optional<Exchange> exchange = exchanges.next()) {
    bool is_complete = exchange->request && exchange->answer;
    if (!is_complete || !is_whole(*exchange->request, SIZE_MAX) ||
        !is_whole(*exchange->answer, UINT16_MAX)) {
      continue;
    }
    function(*exchange->request, *exchange->answer);
  }
}

/// The request as the recorder writes it unless secrets are kept.
Bytes masked(uint32_t message_type, Bytes request) {
  for (const catalog::WireSecret &secret : catalog::wire_secrets()) {
    if (secret.message_type != message_type) continue;
    Hidden hidden = {secret.offset, secret.length, secret.stride};
    for (size_t i = 0; i < request.size(); ++i)
      if (hidden.covers(i)) request[i] = '*';
  }
  return request;
}

}  // namespace

void Recording::add(const std::string &path) {
  std::map<Key, Answers> all = answers_;
  bool is_empty = true;
  each_exchange(path, [&](const Packet &request, const Packet &answer) {
    Bytes bytes = request.record;
    unspecified_.clear(request.module, request.message_type, bytes);
    if (request.is_masked) bytes = masked(request.message_type, std::move(bytes));
    all[{request.message_type, request.module, request.is_masked, std::move(bytes)}].all.push_back(
        {static_cast<int32_t>(answer.result), answer.status, answer.record});
    is_empty = false;
  });
  if (is_empty) {
    throw BadInput(
        fmt::format("{}: holds no whole exchange; expected at least one", printable(path)));
  }
  answers_ = std::move(all);
}

const Recorded *Recording::next(uint32_t message_type, uint32_t module, ByteView request) {
  Bytes bytes(request.begin(), request.end());
  unspecified_.clear(module, message_type, bytes);
  auto found = answers_.find({message_type, module, false, bytes});
  if (found == answers_.end())
    found = answers_.find({message_type, module, true, masked(message_type, std::move(bytes))});
  if (found == answers_.end()) return nullptr;
  Answers &answers = found->second;
  size_t place = std::min(answers.given, answers.all.size() - 1);
  answers.given = place + 1;
  return &answers.all[place];
}

std::vector<Bytes> recorded_replies(const std::string &path, const Operation &operation) {
  std::vector<Bytes> replies;
  each_exchange(path, [&](const Packet &request, const Packet &answer) {
    bool is_its = operation_of(request.message_type, request.module, request.record) == &operation;
    if (is_its && answer.result == 0 && answer.status == 0 && !answer.no_reply)
      replies.push_back(answer.record);
  });
  if (replies.empty()) {
    throw BadInput(fmt::format("{}: {}: holds no reply to it; expected at least one",
                               operation.name, printable(path)));
  }
  return replies;
}

}  // namespace olt::mock
