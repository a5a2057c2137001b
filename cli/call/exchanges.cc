#include "cli/call/exchanges.h"

#include <cstdio>
#include <string>

#include "cli/call/exchange_printer.h"

namespace olt::cli {

namespace {

thread_local uint32_t reply_length = 0;

void remember(void * /*context*/, const olt_exchange *exchange) {
  reply_length = exchange->reply_length;
}

void remember_and_show(void *context, const olt_exchange *exchange) {
  remember(context, exchange);
  std::string text = trace_text(*exchange);
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

}  // namespace

void watch_exchanges(bool trace) {
  olt_watch_exchanges(trace ? remember_and_show : remember, nullptr);
}

uint32_t last_reply_length() {
  return reply_length;
}

}  // namespace olt::cli
