#include "report/NamePattern.h"

#include <fnmatch.h>

#include <boost/algorithm/string/predicate.hpp>
#include <utility>

namespace Tarnex::Reports {

NamePattern::NamePattern(std::string text)
    : text(std::move(text)), isGlob(this->text.find_first_of("*?[") != std::string::npos) {}

bool NamePattern::Matches(const std::string& name) const {
    return text == name || (isGlob ? fnmatch(text.c_str(), name.c_str(), FNM_CASEFOLD) == 0
                                   : boost::iequals(text, name));
}

}  // namespace Tarnex::Reports
