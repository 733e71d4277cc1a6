#include <boost/algorithm/string/replace.hpp>

#include "assay/Page.h"
#include "assay/Renderers.h"

namespace Tarnex::Assay {
namespace {

constexpr std::string_view PLACEHOLDER = "/*REPORTS*/[]";

}  // namespace

std::string RenderHtml(const std::vector<NamedReport>& reports) {
    Json list = Json::array();
    for (const auto& [name, report] : reports) {
        Json json = ToJson(report);
        json["source"] = name;
        list.push_back(std::move(json));
    }
    // Nothing in the data may end the element that holds it.
    const std::string data = boost::replace_all_copy(Render(list), "<", "\\u003c");
    std::string page = PAGE;
    return page.replace(page.find(PLACEHOLDER), PLACEHOLDER.size(), data);
}

}  // namespace Tarnex::Assay
