#include "parent/Session.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <utility>

#include "core/support/Constants.h"
#include "core/support/ModuleOptions.h"

namespace Tarnex::Parent {

bool Contains(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string JoinOrNothing(const Names& names) {
    std::string joined;
    for (const std::string& name : names) {
        joined += (joined.empty() ? "" : ",") + name;
    }
    return joined.empty() ? Core::Utils::EMPTY_VALUE : joined;
}

Session::Session(const CheckOptions& options, CheckListener& listener, CheckResult& result)
    : options(options),
      listener(listener),
      result(result),
      application(std::filesystem::absolute(options.application)) {}

std::string Session::GenerousTime(std::size_t items) const {
    constexpr std::uint64_t MOST = 4294967295;
    const auto each = static_cast<std::uint64_t>(options.itemTime.count());
    return std::to_string(std::min(MOST, (items + 2) * each));
}

std::string Session::WriteList(const std::string& name, const Names& plugins) {
    if (plugins.empty()) {
        return Core::Utils::EMPTY_VALUE;
    }
    const std::string path = (std::filesystem::absolute(options.lists) / name).native();
    std::error_code ignored;
    std::filesystem::create_directories(options.lists, ignored);
    std::ofstream file(path, std::ios::binary);
    file << Core::Utils::ModuleOptionsToString({{"Plugins.Listed", plugins}},
                                               Core::Utils::FormatType::Plugins);
    if (!file.flush()) {
        throw CheckFailure("Can't write \"" + path + "\": " + std::strerror(errno));
    }
    lists.insert(path);
    return path;
}

void Session::RemoveUnusedLists(const std::vector<Item>& items) const {
    std::error_code ignored;
    for (const std::string& path : lists) {
        if (std::none_of(items.begin(), items.end(),
                         [&](const Item& item) { return Contains(item.repro, path); })) {
            std::filesystem::remove(path, ignored);
        }
    }
    if (std::filesystem::is_empty(options.lists, ignored)) {
        std::filesystem::remove(options.lists, ignored);
    }
}

void Session::SetRepro(Item& item, Names arguments) const {
    item.repro = std::move(arguments);
    item.repro.insert(item.repro.begin(), Program());
}

void Session::Tell(const Item& item) {
    if (std::find(told.begin(), told.end(), &item) == told.end()) {
        told.push_back(&item);
        listener.OnVerdict(item);
    }
}

void Session::Note(std::string text) {
    if (!Contains(result.notes, text)) {
        result.notes.push_back(std::move(text));
    }
}

}  // namespace Tarnex::Parent
