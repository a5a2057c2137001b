/// How a listing differs from the one that was recorded.
#ifndef OLT_CLI_COMPARE_LISTINGS_H
#define OLT_CLI_COMPARE_LISTINGS_H

#include <string>
#include <vector>

#include "cli/compare/differences.h"

namespace olt::cli {

/// Field by field where both are what read_listing_text() reads, else line by line. Rows are found
/// again by their first cell where it differs in all rows of a table, else by their order.
std::vector<FieldDifference> listing_differences(const std::string &recorded,
                                                 const std::string &now);

}  // namespace olt::cli

#endif
