// The manifest of an LV2 bundle.

#include <boost/filesystem/path.hpp>

#include "collect/Bundle.h"
#include "core/support/Exception.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Tarnex::Collect::ReadTurtle(std::string(data, data + size), "/a.lv2/manifest.ttl");
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
