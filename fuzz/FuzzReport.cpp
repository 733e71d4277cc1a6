// A saved report.

#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"
#include "report/Report.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Tarnex::Reports;  // NOLINT(google-build-using-namespace)
    try {
        const std::string text =
            Render(ToJson(ParseReport({reinterpret_cast<const char*>(data), size})));
        Tarnex::Fuzz::Require(Render(ToJson(ParseReport(text))) == text);
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
