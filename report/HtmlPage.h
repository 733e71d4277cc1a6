#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "report/Report.h"

namespace Tarnex::Reports {

/// One page for the browser that needs nothing else, with what it shows as data in it. Of several
/// reports an outcome that hosts share stands in it once, so that a thousand reports fit.
class HtmlPage {
public:
    /// `name` labels a report without a host's name.
    void Add(const std::string& name, const Report& report);

    std::string Render() const;

private:
    /// An item, with the different outcomes that it has on the hosts.
    struct Row {
        Json item;
        std::vector<Json> outcomes;
        std::unordered_map<std::string, std::int32_t>
            numbers;  ///< of the outcomes, by what differs
    };
    struct Host {
        Json facts;
        std::vector<std::int32_t> outcomes;  ///< by row; -1: the host doesn't have the item
    };

    std::int32_t FindRow(const Parent::Item& item);
    std::size_t FindSurroundings(const Report& report);
    std::vector<std::int32_t> CountUsual() const;

    std::vector<Row> rows;
    std::map<std::pair<Parent::ItemKind, std::string>, std::int32_t> numbers;
    std::vector<Host> hosts;
    std::vector<Json> surroundings;  ///< each once
    Json runs = Json::array();       ///< of the only report
};

}  // namespace Tarnex::Reports
