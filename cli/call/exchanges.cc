#include "cli/call/exchanges.h"

#include <cstdio>
#include <string>
#include <utility>

#include "cli/call/exchange_printer.h"

namespace olt::cli {

namespace {

thread_local std::optional<ExchangeEnd> last_end;
thread_local const catalog::Operation *current = nullptr;

void remember(void * /*context*/, const olt_exchange *exchange) {
  bool is_answered = exchange->result == OLT_TRANSPORT_OK;
  last_end = {exchange->result, is_answered ? exchange->status : uint16_t{0},
              exchange->reply_length};
}

void remember_and_show(void *context, const olt_exchange *exchange) {
  remember(context, exchange);
  const auto &secrets = *static_cast<const std::vector<catalog::WireSecret> *>(context);
  std::string text = trace_text(*exchange, secrets, current);
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

}  // namespace

void watch_exchanges(bool trace, std::vector<catalog::WireSecret> secrets) {
  static std::vector<catalog::WireSecret> kept;
  kept = std::move(secrets);
  olt_watch_exchanges(trace ? remember_and_show : remember, &kept);
}

ExchangesOf::ExchangesOf(const catalog::Operation &operation) {
  current = &operation;
  last_end.reset();
}

ExchangesOf::~ExchangesOf() {
  current = nullptr;
}

std::optional<ExchangeEnd> last_exchange() {
  return last_end;
}

}  // namespace olt::cli
