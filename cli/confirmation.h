/// What a user is shown and asked before a call that cannot be taken back, or that changes a
/// record.
#ifndef OLT_CLI_CONFIRMATION_H
#define OLT_CLI_CONFIRMATION_H

#include <span>

#include "catalog/operation.h"
#include "cli/output/result.h"

namespace olt::cli {

/// Asks before a destructive operation. Throws Error when the answer is not yes.
void confirm_act(const catalog::Operation &operation);

/// Shows the changes, and asks unless that was answered. Throws Error when the answer is not yes.
void confirm_changes(const catalog::Operation &operation, std::span<const Change> changes,
                     bool is_answered);

}  // namespace olt::cli

#endif
