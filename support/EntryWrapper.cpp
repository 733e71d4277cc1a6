#include "core/support/EntryWrapper.h"

#include <string>
#include <vector>

#include "platform/WideText.h"

namespace Tarnex::Core {

int EntryWrapperWchar(int argc, wchar_t** argv, const std::function<int(int, char**)>& run) {
    std::vector<std::string> texts;
    for (int i = 0; i < argc; ++i) {
        texts.push_back(Platform::Narrow(argv[i]));
    }
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return run(argc, pointers.data());
}

}  // namespace Tarnex::Core
