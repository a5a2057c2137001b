/// Tables in the pages of docs/, which must agree with the code.
#ifndef OLT_TESTS_SUPPORT_PAGE_H
#define OLT_TESTS_SUPPORT_PAGE_H

#include <string>
#include <string_view>
#include <vector>

namespace olt::test {

using Cells = std::vector<std::string>;

/// The parts of the text between the separators.
std::vector<std::string> split(std::string_view text, std::string_view separator);

/// The rows below the heading "| FIRST | SECOND |...", of which the beginning is given. Throws
/// std::invalid_argument when the page has no such table.
std::vector<Cells> table_in_page(const std::string &page, std::string_view heading);

/// The lines that are not among the others, each in order.
std::vector<std::string> without(const std::vector<std::string> &lines,
                                 const std::vector<std::string> &others);

}  // namespace olt::test

#endif
