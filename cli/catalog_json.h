/// The catalog as data. docs/catalog.md describes the document, docs/catalog.schema.json is its
/// schema.
#ifndef OLT_CLI_CATALOG_JSON_H
#define OLT_CLI_CATALOG_JSON_H

#include <nlohmann/json.hpp>

#include <string_view>

#include "catalog/layout.h"
#include "catalog/operation.h"

namespace olt::cli {

/// The whole catalog, or the operations about the word with their records. Throws Error when there
/// are none.
nlohmann::ordered_json catalog_json(std::string_view word,
                                    const catalog::Layout &layout = catalog::Layout::box());

/// One operation of it.
nlohmann::ordered_json operation_json(const catalog::Operation &operation,
                                      const catalog::Layout &layout = catalog::Layout::box());

}  // namespace olt::cli

#endif
