#include "report/Accepted.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "core/support/Exception.h"
#include "platform/WideText.h"

namespace Tarnex::Reports {
namespace {

constexpr const char* BLANKS = " \t";

std::ifstream Open(const std::string& path) {
    errno = boost::filesystem::is_directory(path) ? EISDIR : 0;
    std::ifstream file(path, std::ios::binary);
    if (!file || errno == EISDIR) {
        throw Exception(path + ": " + std::strerror(errno));
    }
    return file;
}

Parent::Verdict ParseBadVerdict(const std::string& word, const std::string& place) {
    const auto verdict = Parent::ParseVerdict(word);
    if (!verdict) {
        throw Exception(fmt::format(
            "{}: \"{}\" isn't a verdict; write ? in place of a blank that belongs to the name",
            place, word));
    }
    if (!IsBad(*verdict)) {
        throw Exception(
            fmt::format("{}: what is {} isn't bad, so nothing has to be accepted", place, word));
    }
    return *verdict;
}

}  // namespace

AcceptedItems::AcceptedItems(const std::string& path) {
    std::ifstream file = Open(path);
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string place = fmt::format("{}:{}", path, ++number);
        if (!Platform::IsUtf8(line)) {
            throw Exception(place + ": the line isn't UTF-8");
        }
        boost::trim(line);
        if (!line.empty() && line.front() != '#') {
            lines.push_back(ParseLine(line, place));
        }
    }
    if (file.bad()) {
        throw Exception(path + ": " + std::strerror(errno));
    }
}

AcceptedItems::Line AcceptedItems::ParseLine(const std::string& text, const std::string& place) {
    const std::size_t blank = text.find_last_of(BLANKS);
    if (blank == std::string::npos) {
        return {place, NamePattern(text), std::nullopt};
    }
    const Parent::Verdict verdict = ParseBadVerdict(text.substr(blank + 1), place);
    return {place, NamePattern(boost::trim_copy(text.substr(0, blank))), verdict};
}

void AcceptedItems::Mark(std::vector<Parent::Item>& items) {
    for (Parent::Item& item : items) {
        Mark(item);
    }
}

void AcceptedItems::Mark(Parent::Item& item) {
    item.accepted = false;
    for (Line& line : lines) {
        if (line.name.Matches(item.name)) {
            line.used = true;
            item.accepted = item.accepted || (IsBad(item.verdict) &&
                                              item.verdict == line.verdict.value_or(item.verdict));
        }
    }
}

std::vector<std::string> AcceptedItems::DescribeUnused() const {
    std::vector<std::string> texts;
    for (const Line& line : lines) {
        if (!line.used) {
            texts.push_back(fmt::format("{}: nothing that was checked is called {}", line.place,
                                        line.name.text));
        }
    }
    return texts;
}

}  // namespace Tarnex::Reports
