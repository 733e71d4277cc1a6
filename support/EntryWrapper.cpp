#include "core/support/EntryWrapper.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "platform/WideText.h"

namespace Tarnex::Core {

int EntryWrapperWchar(int argc, wchar_t** argv, const std::function<int(int, char**)>& run) {
    std::vector<std::string> texts;
    std::transform(argv, argv + argc, std::back_inserter(texts), Platform::Narrow);
    std::vector<char*> pointers(texts.size() + 1);  // ends with a null pointer
    std::transform(texts.begin(), texts.end(), pointers.begin(),
                   [](std::string& text) { return text.data(); });
    return run(argc, pointers.data());
}

}  // namespace Tarnex::Core
