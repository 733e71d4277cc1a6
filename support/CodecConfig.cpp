#include "core/support/CodecConfig.h"

#include <algorithm>
#include <utility>

#include "core/support/Exception.h"
#include "platform/WideText.h"

namespace Tarnex::Core::Utils {
namespace {

CoderType ParseCoderType(const std::string& text) {
    for (const CoderType type : {CoderType::Decoder, CoderType::Encoder}) {
        if (text == ToString(type)) {
            return type;
        }
    }
    return CoderType::None;
}

bool IsPlainText(const std::string& text) {
    const auto isControl = [](unsigned char byte) { return byte < ' ' || byte == 0x7F; };
    return !text.empty() && Platform::IsUtf8(text) && std::ranges::none_of(text, isControl);
}

}  // namespace

bool IsImplementationName(const std::string& text) {
    return IsPlainText(text) && text.find_first_of(".,: ") == std::string::npos;
}

bool IsCodecId(const std::string& text) {
    return IsPlainText(text) && text.find(',') == std::string::npos && text.front() != ' ' &&
           text.back() != ' ';
}

CodecConfig::CodecConfig(CoderType type, std::string implementation, std::string codecId)
    : type(type), implementation(std::move(implementation)), codecId(std::move(codecId)) {}

CodecConfig::CodecConfig(const std::string& id) {
    if (id.empty()) {
        return;
    }
    const std::size_t first = id.find('.');
    const std::size_t second = first == std::string::npos ? first : id.find('.', first + 1);
    if (second != std::string::npos) {
        type = ParseCoderType(id.substr(0, first));
        implementation = id.substr(first + 1, second - first - 1);
        codecId = id.substr(second + 1);
    }
    if (type == CoderType::None || !IsImplementationName(implementation) || !IsCodecId(codecId)) {
        throw Exception("\"" + id + "\" isn't a codec test, such as Decoder.IMPLEMENTATION.CODEC");
    }
}

std::string CodecConfig::GetID() const {
    return IsEmpty() ? std::string() : ToString(type) + "." + implementation + "." + codecId;
}

bool CodecConfig::IsEmpty() const {
    return type == CoderType::None && implementation.empty() && codecId.empty();
}

}  // namespace Tarnex::Core::Utils
