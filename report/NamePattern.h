#pragma once

#include <string>

namespace Tarnex::Reports {

/// A name as people type it: in any case, or with `*`, `?` and `[]`, which stand for `/` too.
class NamePattern {
public:
    explicit NamePattern(std::string text);

    [[nodiscard]] bool Matches(const std::string& name) const;

    const std::string text;
    const bool isGlob;
};

}  // namespace Tarnex::Reports
