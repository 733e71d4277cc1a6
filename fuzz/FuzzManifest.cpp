// A manifest that stands in an LV2 bundle.

#include <boost/filesystem/path.hpp>

#include "collect/Bundle.h"
#include "core/support/Exception.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Tarnex::Collect::ReadManifest(std::string(data, data + size), "/bundle.lv2");
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
