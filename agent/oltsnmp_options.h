/// The options of oltsnmp, which its command line takes and completion offers.
#ifndef OLT_AGENT_OLTSNMP_OPTIONS_H
#define OLT_AGENT_OLTSNMP_OPTIONS_H

#include "serving/options.h"

namespace olt::agent::option {

using serving::Option;

inline constexpr Option kConfig = {"--config", "FILE",
                                   "options from a file, as OPTION=VALUE in a line"};
inline constexpr Option kAgentx = {"--agentx", "SOCKET",
                                   "the master agent's AgentX socket; default "
                                   "unix:/var/agentx/master"};
inline constexpr Option kBox = {"--box", "DIR",
                                "the run directory of the modules; default: the one that "
                                "OLT_RUN_DIR names"};
inline constexpr Option kRoot = {"--root", "OID",
                                 "the object identifier above all objects; default "
                                 "1.3.6.1.4.1.32473"};
inline constexpr Option kLayout = {"--layout", "LAYOUT",
                                   "what the modules' bytes mean: a layout's name or file; "
                                   "default: the one that OLT_LAYOUT names, else box"};
inline constexpr Option kContext = {"--context", "NAME",
                                    "the SNMP context of all objects; default: the one without a "
                                    "name"};
inline constexpr Option kOpenInterfaces = {"--open-interfaces", "",
                                           "show the OLT's interfaces instead of the host's; "
                                           "default: in the context olt, beside them"};
inline constexpr Option kWritable = {"--writable", "",
                                     "let managers set what can be set; default: read-only"};
inline constexpr Option kPace = {"--pace", "MS",
                                 "milliseconds between the exchanges that look for changes to "
                                 "notify managers of, 10 to 1000; 0: no notifications; default 20"};
inline constexpr Option kCheck = {"--check", "",
                                  "check the options and the configuration file, and end"};
inline constexpr Option kMib = {"--mib", "",
                                "print the MIB module of the root and the layout, and end"};
inline constexpr Option kHelp = {"--help", "", "show this help"};
inline constexpr Option kVersion = {"--version", "", "show the version"};

inline constexpr Option kAll[] = {kConfig,  kAgentx,         kBox,      kRoot, kLayout,
                                  kContext, kOpenInterfaces, kWritable, kPace, kCheck,
                                  kMib,     kHelp,           kVersion};

}  // namespace olt::agent::option

#endif
