#include "assay/Names.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fnmatch.h>

#include <algorithm>
#include <boost/algorithm/string.hpp>
#include <boost/filesystem.hpp>
#include <numeric>
#include <set>

#include "core/media/Formats.h"
#include "report/NamePattern.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;

constexpr std::size_t MOST_SUGGESTIONS = 3;

/// A path that is there, links resolved; empty for any other text.
std::string Resolve(const std::string& word) {
    boost::system::error_code error;
    const bool isPath = word.find('/') != std::string::npos;
    return isPath ? boost::filesystem::canonical(word, error).string() : "";
}

/// One word, prepared once for all candidates.
class Word {
public:
    explicit Word(std::string_view text)
        : word(boost::trim_copy(std::string(text))), path(Resolve(word.text)) {}

    bool Is(const Candidate& candidate) const { return candidate.name == word.text; }

    bool Means(const Candidate& candidate) const {
        return word.Matches(candidate.name) || MeansPath(candidate.path) ||
               std::ranges::any_of(candidate.others,
                                   [this](const std::string& name) { return word.Matches(name); });
    }

private:
    bool MeansPath(const std::string& file) const {
        return !file.empty() &&
               ((!path.empty() && (file == path || file.starts_with(path + "/"))) ||
                (word.isGlob && fnmatch(word.text.c_str(), file.c_str(), 0) == 0));
    }

    const Reports::NamePattern word;
    const std::string path;
};

/// How many letters have to be put in, taken out or changed.
std::size_t GetDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// The least of all names, so that "hefc" is near the codec H265. What a name begins with is near,
/// too.
std::size_t GetDistance(const std::string& word, const Candidate& candidate) {
    const auto distance = [&](const std::string& name) {
        const std::string other = boost::to_lower_copy(name);
        const std::size_t whole = GetDistance(word, other);
        return word.size() < 3
                   ? whole
                   : std::min(whole, 1 + GetDistance(word, other.substr(0, word.size())));
    };
    std::size_t least = distance(candidate.name);
    for (const std::string& name : candidate.others) {
        least = std::min(least, distance(name));
    }
    return least;
}

std::vector<std::string> FindNearest(std::string_view text, const std::vector<Candidate>& all) {
    const std::string word = boost::to_lower_copy(boost::trim_copy(std::string(text)));
    const std::size_t farthest = std::max<std::size_t>(word.size() > 3 ? 2 : 1, word.size() / 3);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const Candidate& candidate : all) {
        const std::size_t distance = GetDistance(word, candidate);
        if (distance <= farthest) {
            near.emplace_back(distance, candidate.name);
        }
    }
    std::ranges::stable_sort(near, {}, &std::pair<std::size_t, std::string>::first);
    near.resize(std::min(near.size(), MOST_SUGGESTIONS));
    std::vector<std::string> names;
    std::ranges::transform(near, std::back_inserter(names),
                           &std::pair<std::size_t, std::string>::second);
    return names;
}

std::string GetPath(const Item& item) {
    return item.file ? item.file->path : "";
}

/// The id without its prefix, and the name that libav has where that is another one.
std::vector<std::string> GetNamesOfCodec(const std::string& id) {
    std::vector<std::string> names{Reports::NameCodec(id)};
    if (id == Proc::IFormatCodecVideo::CODEC_ID_H265) {
        names.emplace_back("hevc");
    }
    return names;
}

/// As people say it, and the exact one without its ending.
std::vector<std::string> GetNamesOfImplementation(const std::string& implementation) {
    return {Reports::NameImplementation(implementation),
            boost::replace_last_copy(implementation, "_IMPL", "")};
}

/// The part of the codec tests' names, each once.
std::vector<Candidate> GetParts(const std::vector<Item>& items, std::string Item::*part,
                                std::vector<std::string> (*getOthers)(const std::string&)) {
    std::set<std::string> names;
    for (const Item& item : items) {
        if (item.kind == ItemKind::Codec) {
            names.insert(item.*part);
        }
    }
    std::vector<Candidate> all;
    all.reserve(names.size());
    for (const std::string& name : names) {
        all.push_back({name, getOthers(name), ""});
    }
    return all;
}

Candidate ToCandidate(const Item& item) {
    Candidate candidate{item.name, {Reports::NameItem(item)}, GetPath(item)};
    const auto add = [&](const std::string& name) {
        if (!name.empty()) {
            candidate.others.push_back(name);
        }
    };
    add(item.plugin);
    add(item.id);
    add(item.title);
    if (item.kind == ItemKind::Codec) {
        add(item.codec);
        std::ranges::for_each(GetNamesOfCodec(item.codec), add);
    }
    return candidate;
}

}  // namespace

std::vector<std::string> FindNames(std::string_view word, const std::vector<Candidate>& all) {
    const Word wanted(word);
    std::vector<std::string> names;
    for (const Candidate& candidate : all) {
        if (wanted.Is(candidate)) {
            return {candidate.name};
        }
        if (wanted.Means(candidate)) {
            names.push_back(candidate.name);
        }
    }
    return names;
}

std::vector<std::string> FindNames(const std::vector<std::string>& words,
                                   const std::vector<Candidate>& all, std::string_view what) {
    std::set<std::string> meant;
    for (const std::string& word : words) {
        const auto names = FindNames(word, all);
        if (names.empty()) {
            throw UnknownName(DescribeUnknown(word, all, what));
        }
        meant.insert(names.begin(), names.end());
    }
    std::vector<std::string> names;
    for (const Candidate& candidate : all) {
        if (meant.contains(candidate.name)) {
            names.push_back(candidate.name);
        }
    }
    return names;
}

std::string DescribeUnknown(std::string_view word, const std::vector<Candidate>& all,
                            std::string_view what) {
    std::vector<std::string> near = FindNearest(word, all);
    std::string text = fmt::format("There is no {} \"{}\"", what, word);
    if (near.empty()) {
        return text;
    }
    const std::string last = near.back();
    near.pop_back();
    const std::string others = fmt::to_string(fmt::join(near, ", "));
    return fmt::format("{}; did you mean {}{}{}?", text, others, others.empty() ? "" : " or ",
                       last);
}

std::vector<Candidate> GetPlugins(const std::vector<Item>& items) {
    std::vector<Candidate> all;
    for (const Item& item : items) {
        if (item.kind == ItemKind::Plugin) {
            all.push_back({item.name, {}, GetPath(item)});
        }
    }
    return all;
}

std::vector<Candidate> GetCodecs(const std::vector<Item>& items) {
    return GetParts(items, &Item::codec, GetNamesOfCodec);
}

std::vector<Candidate> GetImplementations(const std::vector<Item>& items) {
    return GetParts(items, &Item::implementation, GetNamesOfImplementation);
}

std::vector<Candidate> GetItems(const std::vector<Item>& items) {
    std::vector<Candidate> all;
    std::ranges::transform(items, std::back_inserter(all), ToCandidate);
    return all;
}

}  // namespace Tarnex::Assay
