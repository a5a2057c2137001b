/// The platform's own lines in the log, and its settings.
#ifndef OLT_PLATFORM_LOG_H
#define OLT_PLATFORM_LOG_H

#include <string>

namespace olt::platform {

inline constexpr int kErrorLevel = 3;
inline constexpr int kWarningLevel = 4;

/// Logs what went wrong with an exchange.
void log_exchange_error(const std::string &message, int line = __builtin_LINE());

/// Value of an environment variable; null when it is unset or empty.
const char *environment(const char *name);

}  // namespace olt::platform

#endif
