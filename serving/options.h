/// The options that all programs that serve modules have. Their command lines take them, and
/// completion offers them.
#ifndef OLT_SERVING_OPTIONS_H
#define OLT_SERVING_OPTIONS_H

namespace olt::serving {

struct Option {
  const char *name;
  const char *value;  ///< what it takes, such as "DIR"; empty for a flag
  const char *summary;
};

namespace option {

inline constexpr Option kRunDir = {"--run-dir", "DIR", "Directory of the sockets and the listings"};
inline constexpr Option kGroup = {"--group", "NAME", "Group whose members may use the box too"};
inline constexpr Option kTrace = {"--trace", "", "Print a line per exchange"};
inline constexpr Option kPendingLimit = {
    "--pending-limit", "BYTES",
    "Most bytes that half-received requests may take together; default 64 MiB"};
inline constexpr Option kVersion = {"--version", "", "The version"};
inline constexpr Option kHelp = {"-h,--help", "", "This text"};

}  // namespace option

}  // namespace olt::serving

#endif
