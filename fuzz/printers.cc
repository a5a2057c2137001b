// Results of operations as text, as JSON and in traces, for any bytes of a reply.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/call/exchange_printer.h"
#include "cli/call/exchanges.h"
#include "cli/output/format.h"
#include "cli/output/listing_reader.h"
#include "cli/text/error.h"
#include "fuzz/platform.h"
#include "fuzz/target.h"
#include "tests/support/folder.h"

namespace {

using nlohmann::ordered_json;
using olt::catalog::Argument;
using olt::catalog::Field;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::cli::Call;
using olt::cli::Result;
using olt::fuzz::Input;
using olt::fuzz::require;

constexpr char kMask[] = "********";

const std::vector<const Operation *> &senders() {
  static const std::vector<const Operation *> instance = [] {
    std::vector<const Operation *> found;
    for (const olt::catalog::Family &family : olt::catalog::families()) {
      for (const Operation &operation : family.operations) {
        if (operation.address.sends()) found.push_back(&operation);
      }
    }
    return found;
  }();
  return instance;
}

void require_json(const std::string &line, const Operation &operation, bool succeeded) {
  require(std::count(line.begin(), line.end(), '\n') == 1 && line.back() == '\n',
          "an object is one line", line);
  ordered_json parsed = ordered_json::parse(line, nullptr, false);
  require(!parsed.is_discarded(), "what is printed as JSON can be read", line);
  require(line.find('\x7f') == std::string::npos, "no control characters", line);
  require(parsed["operation"] == operation.name && parsed["failed"] == !succeeded,
          "an object names its operation and says what became of it", line);
  size_t outputs = 0;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_output()) continue;
    ++outputs;
    if (!succeeded) continue;
    require(parsed["outputs"].contains(argument.name), "every output is there", line);
    for (const Field &field : argument.fields) {
      if (field.secret) {
        require(parsed["outputs"][argument.name][field.name] == kMask, "secrets are masked", line);
      }
    }
  }
  require(parsed["outputs"].size() == (succeeded ? outputs : 0),
          "there are outputs of a call that succeeded, and no others", line);
}

void require_text(const std::string &text, const Operation &operation) {
  olt::fuzz::require_lines(text);
  for (const Argument &argument : operation.arguments()) {
    if (argument.is_output()) require(!text.empty(), "outputs are shown", operation.name);
  }
}

/// Fills secrets with a byte that occurs nowhere else.
void require_masked_trace(uint32_t type) {
  constexpr uint8_t kSecret = 0xEE;
  for (const olt::catalog::WireSecret &secret : olt::catalog::wire_secrets()) {
    if (secret.message_type != type) continue;
    size_t stride = std::max<size_t>(secret.stride, 1);
    std::vector<uint8_t> request(secret.offset + secret.length +
                                 (secret.stride == 0 ? 0 : 2 * stride));
    for (size_t at = secret.offset; at + secret.length <= request.size(); at += stride) {
      std::fill_n(request.begin() + static_cast<std::ptrdiff_t>(at), secret.length, kSecret);
      if (secret.stride == 0) break;
    }
    olt_exchange exchange{.message_type = type,
                          .request = request.data(),
                          .request_length = static_cast<uint32_t>(request.size())};
    std::string text = olt::cli::trace_text(exchange);
    require(text.find(" ee") == std::string::npos && text.find(" **") != std::string::npos,
            "secrets are masked in traces", text);
  }
}

/// The reply with a true count of the bytes after its head, which the library does not check.
std::vector<uint8_t> honest(const Operation &operation, std::span<const uint8_t> bytes) {
  std::vector<uint8_t> reply(bytes.begin(), bytes.end());
  for (const Argument &argument : operation.arguments()) {
    if (argument.kind != Kind::kHeadedBlock) continue;
    reply.resize(std::max<size_t>(reply.size(), argument.size));
    auto rest = static_cast<uint32_t>(reply.size() - argument.size);
    uint8_t *count = &reply[argument.size - sizeof rest];
    uint32_t claimed = 0;
    std::memcpy(&claimed, count, sizeof claimed);
    if (claimed > rest) std::memcpy(count, &rest, sizeof rest);
  }
  return reply;
}

void make(const Operation &operation) {
  Call call(operation);
  Result result = olt::cli::result_of(call, call.make(), {});
  std::string text = olt::cli::make_text_formatter()->result(result);
  require(!result.failed() || text.empty(), "a failure has no results", text);
  if (!result.failed()) require_text(text, operation);
  require_json(olt::cli::make_json_formatter()->result(result), operation, !result.failed());
  for (const olt::fuzz::Request &request : olt::fuzz::take_requests()) {
    require_masked_trace(request.type);
  }
}

void trace(const std::vector<uint8_t> &bytes, uint16_t status, uint32_t type) {
  olt_exchange exchange{.module = 2,
                        .message_type = type,
                        .request = bytes.data(),
                        .request_length = static_cast<uint32_t>(bytes.size()),
                        .result = static_cast<int32_t>(uint32_t{status} << 16),
                        .status = status,
                        .reply_length = static_cast<uint16_t>(bytes.size()),
                        .reply = bytes.data(),
                        .elapsed_ns = uint64_t{type} << 20};
  olt::fuzz::require_lines(olt::cli::trace_text(exchange));
}

/// A name that a module gives must not lead out of the folder of listings.
void read_listing(std::span<const uint8_t> field) {
  static const olt::test::Folder folder;
  static const std::string text = folder.write("listing", "a line\n");
  try {
    std::string name = olt::text_in(field);
    std::string found = olt::cli::read_listing(folder.path(), name);
    require(name == "listing" && found == "a line\n", "only listings are read", name);
  } catch (const olt::cli::Error &error) {
    olt::fuzz::require_line(error.what());
  }
}

}  // namespace

// The first byte is the operation's place among those that send, the next two are the status; the
// rest is the reply.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const bool watched = (olt::cli::watch_exchanges(false), true);
  static_cast<void>(watched);
  Input input(data, size);
  const Operation &operation = *senders()[input.u8() % senders().size()];
  uint16_t status = input.u16();
  const std::vector<uint8_t> reply = honest(operation, input.bytes(OLT_REPLY_LIMIT));
  olt::fuzz::answer_with(status, reply);
  make(operation);
  trace(reply, status, operation.address.message_type);
  read_listing(std::span(reply).first(std::min<size_t>(reply.size(), 32)));
  return 0;
}
