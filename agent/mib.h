/// The MIB module of the agent's objects and notifications, in SMIv2.
#ifndef OLT_AGENT_MIB_H
#define OLT_AGENT_MIB_H

#include <string>
#include <string_view>

#include "agent/objects.h"
#include "catalog/layout.h"

namespace olt::agent {

inline constexpr std::string_view kMibName = "OLTMGMT-MIB";

/// Whether a MIB module can be given that root: one below 1.3.6.1.4.1 or 1.3.6.1.3.
bool is_mib_root(const Oid &root);

/// The text of the module. The same layout and root always give the same text.
std::string mib_module(const catalog::Layout &layout, const Oid &root);

}  // namespace olt::agent

#endif
