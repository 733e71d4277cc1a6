#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tarnex::Collect {

/// Texts of any bytes, one after the other in one text: paths may hold every byte but NUL, so no
/// form for people fits them.
class FieldWriter {
public:
    void Add(std::string_view field) {
        const auto size = static_cast<std::uint32_t>(field.size());
        text.append(reinterpret_cast<const char*>(&size), sizeof(size)).append(field);
    }
    const std::string& GetText() const { return text; }

private:
    std::string text;
};

class FieldReader {
public:
    explicit FieldReader(std::string_view text) : rest(text) {}

    /// None at the end, and for what no writer wrote.
    std::optional<std::string_view> Next() {
        std::uint32_t size = 0;
        if (rest.size() < sizeof(size)) {
            return std::nullopt;
        }
        rest.copy(reinterpret_cast<char*>(&size), sizeof(size));
        if (rest.size() - sizeof(size) < size) {
            return std::nullopt;
        }
        const std::string_view field = rest.substr(sizeof(size), size);
        rest.remove_prefix(sizeof(size) + size);
        return field;
    }

private:
    std::string_view rest;
};

}  // namespace Tarnex::Collect
