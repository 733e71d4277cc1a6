#include "core/support/CheckType.h"

#include "core/support/Exception.h"

namespace Tarnex::Core::Utils {

CheckType::CheckType(const std::string& text) {
    if (text == "plugins") {
        value = Plugins;
    } else if (text == "codecs") {
        value = Codecs;
    } else if (text == "all") {
        value = All;
    } else {
        throw Exception("Unknown check type \"" + text + "\"; use plugins, codecs or all");
    }
}

}  // namespace Tarnex::Core::Utils
