#include "core/support/BrokenCodecs.h"

#include <sstream>
#include <utility>

#include "support/ListFile.h"

namespace Tarnex::Core::Utils {
namespace {

CodecLists Parse(const std::string& text) {
    std::istringstream source(text);
    return ReadList(source, "Codec lists", {IsCodecListKey});
}

}  // namespace

BrokenCodecs::BrokenCodecs(CodecLists codecLists) : lists(std::move(codecLists)) {
    std::erase_if(lists, [](const auto& list) { return list.second.empty(); });
}

BrokenCodecs::BrokenCodecs(const std::string& text) : BrokenCodecs(Parse(text)) {}

}  // namespace Tarnex::Core::Utils
