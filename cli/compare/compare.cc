#include "cli/compare/compare.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "base/bad_input.h"
#include "base/text.h"
#include "catalog/message_fields.h"
#include "cli/box/end_signals.h"
#include "cli/call/exchanges.h"
#include "cli/compare/listings.h"
#include "cli/output/listing_reader.h"
#include "cli/text/error.h"
#include "cli/text/file.h"
#include "cli/text/question.h"
#include "oltplatform.h"

namespace olt::cli {

using capture::Exchange;
using capture::Packet;
using catalog::Operation;

namespace {

using Operations = std::vector<const Operation *>;

/// Whether the request may change the box; one that no operation sends may.
bool may_change(const Operations &operations, ByteView request) {
  return operations.empty() ||
         std::any_of(operations.begin(), operations.end(), [request](const Operation *operation) {
           return changes(*operation, request);
         });
}

std::optional<Skip> reason_to_skip(const Exchange &exchange, const Operations &operations,
                                   bool all) {
  if (!exchange.request || !exchange.answer) return Skip::kIncomplete;
  const Packet &request = *exchange.request;
  if (request.record.size() < request.record_length) return Skip::kCut;
  if (!all && may_change(operations, request.record)) return Skip::kChanging;
  if (request.is_masked) return Skip::kMasked;
  return std::nullopt;
}

Answer send(const Packet &packet) {
  Bytes request = packet.record;
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  Answer answer;
  answer.result = platmsg_syn_result(
      packet.message_type, packet.module, request.data(), static_cast<uint32_t>(request.size()),
      &reply, &length, &handle, &answer.status, packet.no_reply ? 1 : 0, packet.timeout);
  if (answer.result != 0 || packet.no_reply || reply == nullptr) return answer;
  const auto *bytes = static_cast<const uint8_t *>(reply);
  answer.reply.assign(bytes, bytes + length);
  IPC_Free(handle);
  return answer;
}

}  // namespace

/// Calls the function with each exchange that is selected, and why it is skipped, if it is.
template <typename Function>
void Compare::each_recorded(const ComparePlan &plan, Function function) {
  capture::Reader reader = capture::read_capture(plan.path);
  capture::Exchanges exchanges(reader);
  uint32_t sent = 0;
  while (std::optional<Exchange> exchange = exchanges.next()) {
    Operations operations = operations_of(*exchange, layout_);
    if (!fits(*exchange, operations, plan.selected) || sent == plan.count) continue;
    const Packet &packet = exchange->any();
    std::optional<Skip> skip = reason_to_skip(*exchange, operations, plan.all);
    if (!skip) ++sent;
    function(Recorded{*exchange, operations,
                      operations.empty()
                          ? fmt::format("type {} to module {}", packet.message_type, packet.module)
                          : operations.front()->name},
             skip);
  }
}

/// Reads the whole capture, so that a damaged one is refused before anything is sent, and asks.
void Compare::check(const ComparePlan &plan) {
  std::error_code error;
  if (std::filesystem::exists(plan.path, error) &&
      !std::filesystem::is_regular_file(plan.path, error)) {
    throw BadInput(
        fmt::format("{}: is not a regular file; expected a capture of libolttrace, which is read "
                    "twice",
                    printable(plan.path)));
  }
  size_t sent = 0;
  std::set<std::string> destructive;
  each_recorded(plan, [&](const Recorded &recorded, const std::optional<Skip> &skip) {
    if (skip) return;
    ++sent;
    for (const Operation *operation : recorded.operations)
      if (operation->destructive) destructive.insert(recorded.name);
  });
  if (sent == 0) {
    throw BadInput(fmt::format("{}: holds no exchange that can be sent; expected one{}",
                               printable(plan.path), plan.all ? "" : " that only reads, or --all"));
  }
  if (!plan.asks || destructive.empty()) return;
  if (!confirm(fmt::format("compare: sends {}, which cannot be taken back. Go on?",
                           fmt::join(destructive, ", ")))) {
    throw BadInput("compare: not confirmed, nothing was sent; expected y, or --yes");
  }
}

/// Nothing differs where the listing was not kept.
std::vector<FieldDifference> Compare::compare_listing(const std::filesystem::path &kept,
                                                      const std::string &now) {
  std::error_code error;
  bool is_kept = std::filesystem::exists(kept, error);
  report_.count_listing(is_kept);
  if (!is_kept) return {};
  std::string place = printable(kept.string());
  if (!std::filesystem::is_regular_file(kept, error))
    throw BadInput(fmt::format("{}: is no regular file; expected a kept listing", place));
  std::string recorded = read_file(kept, capture::kMaxKeptListing, error);
  if (error) throw BadInput(fmt::format("{}: cannot be read: {}", place, error.message()));
  return listing_differences(recorded, now);
}

/// @param files where listings were kept; empty: they are not compared
std::vector<FieldDifference> Compare::ask_box(const Recorded &recorded,
                                              const std::filesystem::path &files) {
  const Packet &answer = *recorded.exchange.answer;
  const Operation *operation = recorded.operations.empty() ? nullptr : recorded.operations.front();
  std::optional<ExchangesOf> traced;
  if (operation != nullptr) traced.emplace(*operation);
  Answer now = send(*recorded.exchange.request);
  std::vector<FieldDifference> differences =
      differences_of(answer, now, operation, layout_, detail_);
  if (operation == nullptr || now.reply.empty()) return differences;
  std::optional<catalog::Field> listing = listing_field(*operation);
  if (!listing || listing->offset >= now.reply.size()) return differences;
  auto name_in = [&listing](ByteView record) {
    size_t begin = std::min<size_t>(listing->offset, record.size());
    return text_in(record.subspan(begin, std::min<size_t>(listing->width, record.size() - begin)));
  };
  std::string name = name_in(now.reply);
  if (name.empty()) return differences;
  std::string recorded_name = name_in(answer.record);
  std::string text;
  try {
    text = read_listing(box_.listing_dir(), name);
  } catch (const Error &) {
    differences.push_back({listing->name,
                           0,
                           {printable(recorded_name), recorded_name},
                           {printable(name) + ", which cannot be read", nullptr}});
    return differences;
  }
  if (files.empty() || recorded_name.empty()) return differences;
  for (FieldDifference &difference :
       compare_listing(files / capture::kept_listing_name(answer), text)) {
    differences.push_back(std::move(difference));
  }
  return differences;
}

void Compare::run(const ComparePlan &plan) {
  try {
    check(plan);
    box_.require_box();
    DeferredEnd end;
    each_recorded(plan, [&](const Recorded &recorded, const std::optional<Skip> &skip) {
      if (end.is_due()) {
        fail("compare: interrupted; {} of the capture compared",
             counted(report_.sent(), "exchange"));
      }
      if (skip) return report_.skip(recorded, *skip);
      std::vector<FieldDifference> differences = ask_box(recorded, plan.files);
      std::erase_if(differences, [&](const FieldDifference &difference) {
        return plan.ignored.cover(recorded.name, difference.field);
      });
      print(report_.add(recorded, differences, as_json_));
    });
  } catch (const BadInput &error) {
    throw Error(kWrongUsage, error.what());
  } catch (const Error &error) {
    throw Error(kWrongUsage, error.what());
  }
  print(report_.summary(as_json_));
  if (!plan.junit.empty()) {
    std::string xml = report_.junit(plan.path);
    if (std::error_code error = write_file(plan.junit, as_bytes(xml))) {
      throw Error(kWrongUsage, fmt::format("compare: cannot write {}: {}", printable(plan.junit),
                                           error.message()));
    }
  }
  if (report_.differing() > 0)
    fail("compare: {} with differences", counted(report_.differing(), "exchange"));
}

}  // namespace olt::cli
