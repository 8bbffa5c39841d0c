// JSON output of the command line, by one rule for every command: a results table
// (`core::ResultsTable`) is an object of its title, row heading, columns, column groups
// (only when it has some) and rows, each row its label and values, with "highlighted" flags
// where any of its cells is picked out; a missing value is null wherever it stands, in a
// table or on its own. A command's document is its facts (paths, dates, counts, names)
// beside its tables under the names it gives them.
#pragma once

#include "core/results_table.hpp"

#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

namespace varo::cli {

using Json = nlohmann::ordered_json;

Json tableJson(const core::ResultsTable& table);
Json tablesJson(const std::vector<core::ResultsTable>& tables);
// A number, or null when it is missing.
Json numberJson(std::optional<double> value);
// Each table under its name, added to the document.
void addTables(Json& document, const std::vector<core::NamedTable>& tables);

} // namespace varo::cli
