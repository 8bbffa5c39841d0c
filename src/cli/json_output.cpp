#include "cli/json_output.hpp"

#include <algorithm>

namespace varo::cli {

Json numberJson(std::optional<double> value) {
    return value ? Json(*value) : Json();
}

Json tableJson(const core::ResultsTable& table) {
    Json document;
    document["title"] = table.title;
    document["rowHeading"] = table.rowHeading;
    document["columns"] = table.columns;
    if (!table.columnGroups.empty()) {
        Json groups = Json::array();
        for (const auto& group : table.columnGroups) {
            groups.push_back({{"title", group.title}, {"firstColumn", group.firstColumn}});
        }
        document["columnGroups"] = std::move(groups);
    }
    Json rows = Json::array();
    for (const auto& row : table.rows) {
        Json values = Json::array();
        Json highlighted = Json::array();
        for (const auto& cell : row.cells) {
            values.push_back(numberJson(cell.value));
            highlighted.push_back(cell.highlighted);
        }
        Json entry{{"label", row.label}, {"values", std::move(values)}};
        if (std::any_of(row.cells.begin(), row.cells.end(),
                        [](const auto& cell) { return cell.highlighted; })) {
            entry["highlighted"] = std::move(highlighted);
        }
        rows.push_back(std::move(entry));
    }
    document["rows"] = std::move(rows);
    return document;
}

Json tablesJson(const std::vector<core::ResultsTable>& tables) {
    Json list = Json::array();
    for (const core::ResultsTable& table : tables) {
        list.push_back(tableJson(table));
    }
    return list;
}

void addTables(Json& document, const std::vector<core::NamedTable>& tables) {
    for (const core::NamedTable& named : tables) {
        document[named.name] = tableJson(named.table);
    }
}

} // namespace varo::cli
