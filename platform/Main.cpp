#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "platform/WideText.h"

int wmain(int argc, wchar_t** argv);

int main(int argc, char** argv) {
    std::vector<std::wstring> texts;
    std::transform(argv, argv + argc, std::back_inserter(texts), Tarnex::Platform::Widen);
    std::vector<wchar_t*> pointers(texts.size() + 1);  // ends with a null pointer
    std::transform(texts.begin(), texts.end(), pointers.begin(),
                   [](std::wstring& text) { return text.data(); });
    return wmain(argc, pointers.data());
}
