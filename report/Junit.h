#pragma once

#include <map>
#include <string>
#include <vector>

#include "report/Report.h"

namespace Tarnex::Reports {

/// JUnit's XML: a suite for each interface of plugins and each implementation of codecs, a case for
/// each item.
class Junit {
public:
    /// `several`: the names of the suites begin with that of the report.
    explicit Junit(bool several) : several(several) {}

    void Add(const std::string& name, const Report& report);

    std::string Render() const;

private:
    const bool several;
    std::map<std::string, std::vector<Parent::Item>> suites;
};

}  // namespace Tarnex::Reports
