#include "assay/Complete.h"

#include <algorithm>
#include <boost/algorithm/string.hpp>
#include <set>

#include "assay/Help.h"
#include "assay/Show.h"
#include "platform/TerminalText.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Words = std::vector<std::string>;

/// As people write it, in the case in which the user began.
std::string ToTyped(const std::string& codec, const std::string& begun) {
    const std::string name = Reports::NameCodec(codec);
    return begun.starts_with("CODEC_ID_")         ? codec
           : begun == boost::to_lower_copy(begun) ? boost::to_lower_copy(name)
                                                  : name;
}

/// Of the last check; none if there wasn't any.
Words GetNames(const std::string& option, const std::string& begun) {
    std::set<std::string> names;
    const bool all = option.empty();
    try {
        for (const Item& item : ReadReport(GetNewestReport().string()).items) {
            if (item.kind != ItemKind::Codec) {
                const bool fits = item.kind == ItemKind::Plugin ? option == "--plugin" : false;
                names.insert(all || fits ? item.name : "");
            } else if (option == "--implementation") {
                names.insert(Reports::NameImplementation(item.implementation));
            } else if (all || option == "--codec") {
                names.insert(ToTyped(item.codec, begun));
            }
        }
    } catch (const std::exception&) {
        // Somebody types: there is no place for a text.
    }
    names.erase("");
    Words words;
    // What a terminal would obey is no word to type.
    std::ranges::copy_if(names, std::back_inserter(words), [](const std::string& name) {
        return Platform::MakePrintable(name) == name;
    });
    return words;
}

Words WithBeginning(const Words& names, const std::string& begun, const std::string& before = "") {
    Words fitting;
    for (const std::string& name : names) {
        if (name.starts_with(begun)) {
            fitting.push_back(before + name);
        }
    }
    return fitting;
}

/// A list of names grows after its last comma.
Words CompleteNames(const std::string& option, const std::string& begun) {
    const std::size_t start = begun.rfind(',') + 1;
    const std::string last = begun.substr(start);
    return WithBeginning(GetNames(option, last), last, begun.substr(0, start));
}

/// Of "--plugin=amp" bash makes three words, the other shells one; here it is two. Returns what the
/// shell expects before the answers.
std::string SplitLast(Words& words) {
    if (words.empty() || words.back() == "=") {
        words.emplace_back();
    }
    std::erase(words, "=");
    const std::string last = words.back();
    const std::size_t end = last.find('=');
    if (!last.starts_with("--") || end == std::string::npos) {
        return "";
    }
    words.back() = last.substr(0, end);
    words.push_back(last.substr(end + 1));
    return last.substr(0, end + 1);
}

Words CompleteLast(const CLI::App& app, const Words& words) {
    const std::string& last = words.back();
    if (words.size() == 1) {
        return WithBeginning(last.starts_with("-") ? GetOptions(app) : GetCommands(app), last);
    }
    const CLI::App* command = FindCommand(app, words.front());
    if (command == nullptr) {
        return {};
    }
    const std::string& before = words[words.size() - 2];
    const CLI::Option* option = command->get_option_no_throw(before);
    if (option != nullptr && option->get_items_expected_min() > 0) {
        return option->get_type_name() == LIST_OF_NAMES ? CompleteNames(before, last) : Words();
    }
    if (last.starts_with("-")) {
        return WithBeginning(GetOptions(*command), last);
    }
    return command->get_name() == "help"   ? WithBeginning(GetCommands(app), last)
           : command->get_name() == "show" ? WithBeginning(GetNames("", last), last)
                                           : Words();
}

}  // namespace

Words Complete(const CLI::App& app, Words words) {
    const std::string before = SplitLast(words);
    return WithBeginning(CompleteLast(app, words), "", before);
}

}  // namespace Tarnex::Assay
