#include <functional>

#include "core/support/EntryWrapper.h"
#include "run/Assayer.h"

int wmain(int argc, wchar_t** argv) {
    const std::function<int(int, char**)> run = Tarnex::Core::Utils::Assayer;
    return Tarnex::Core::EntryWrapperWchar(argc, argv, run);
}
