#include <string>
#include <vector>

#include "platform/WideText.h"

int wmain(int argc, wchar_t** argv);

int main(int argc, char** argv) {
    std::vector<std::wstring> texts;
    for (int i = 0; i < argc; ++i) {
        texts.push_back(Tarnex::Platform::Widen(argv[i]));
    }
    std::vector<wchar_t*> pointers;
    for (std::wstring& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return wmain(argc, pointers.data());
}
