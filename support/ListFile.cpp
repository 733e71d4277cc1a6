#include "support/ListFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

#include "core/media/CoreManagerOptions.h"
#include "core/support/CodecConfig.h"
#include "core/support/Exception.h"
#include "core/support/Text.h"
#include "platform/WideText.h"

namespace Tarnex::Core::Utils {
namespace {

constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

class ListReader {
public:
    ListReader(std::istream& source, const std::string& name, const ListForm& form)
        : source(source), name(name), form(form) {}

    std::map<std::string, std::vector<std::string>> Read() {
        for (std::string line; errno = 0, std::getline(source, line);) {
            ++number;
            if (number == 1) {
                DropByteOrderMark(line);
            }
            TakeLine(line);
        }
        if (source.bad()) {
            ++number;
            Fail(std::string("can't be read: ") + std::strerror(errno));
        }
        return std::move(lists);
    }

private:
    void TakeLine(std::string& line) {
        if (!Platform::IsUtf8(line)) {
            Fail("not UTF-8");
        }
        if (line.starts_with('#') || TrimAll(line).empty()) {
            return;
        }
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) {
            Fail("no colon in \"" + line + "\"");
        }
        const std::string key = GetListKey(line);
        if (!form.isKey(key)) {
            Fail("unknown key \"" + key + "\"");
        }
        std::vector<std::string>& list = lists[key];
        for (std::string& value : SplitNames(line.substr(colon + 1))) {
            if (!form.isValue(value)) {
                Fail("unusable name \"" + value + "\"");
            }
            list.push_back(std::move(value));
        }
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        throw Exception(name + ", line " + std::to_string(number) + ": " + reason);
    }

    std::istream& source;
    const std::string& name;
    const ListForm& form;
    std::size_t number = 0;
    std::map<std::string, std::vector<std::string>> lists;
};

}  // namespace

std::map<std::string, std::vector<std::string>> ReadList(std::istream& source,
                                                         const std::string& name,
                                                         const ListForm& form) {
    return ListReader(source, name, form).Read();
}

std::map<std::string, std::vector<std::string>> ReadListFile(const ioPath& path,
                                                             const ListForm& form) {
    const std::string name = '"' + path.utf8string() + '"';
    errno = 0;
    std::ifstream file(path.utf8string(), std::ios::binary);
    if (!file) {
        throw Exception(name + ", line 1: can't be opened: " + std::strerror(errno));
    }
    return ReadList(file, name, form);
}

std::string GetListKey(const std::string& line) {
    std::string key = line.substr(0, line.find(':'));
    return TrimAll(key);
}

void DropByteOrderMark(std::string& line) {
    if (line.starts_with(BYTE_ORDER_MARK)) {
        line.erase(0, std::strlen(BYTE_ORDER_MARK));
    }
}

bool IsCodecListKey(const std::string& key) {
    for (const CoderType type : {CoderType::Decoder, CoderType::Encoder}) {
        const std::string mark = BlackListCodecOption(type, "");
        if (key.starts_with(mark)) {
            return IsImplementationName(key.substr(mark.size()));
        }
    }
    return false;
}

}  // namespace Tarnex::Core::Utils
