#include "cli/call/exchanges.h"

#include <cstdio>
#include <string>
#include <utility>

#include "cli/call/exchange_printer.h"

namespace olt::cli {

namespace {

thread_local uint32_t reply_length = 0;
thread_local const catalog::Operation *current = nullptr;

void remember(void * /*context*/, const olt_exchange *exchange) {
  reply_length = exchange->reply_length;
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
}

ExchangesOf::~ExchangesOf() {
  current = nullptr;
}

uint32_t last_reply_length() {
  return reply_length;
}

}  // namespace olt::cli
