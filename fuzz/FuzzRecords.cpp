// The output of a process. Its records mustn't depend on how it is cut into pieces.

#include <vector>

#include "fuzz/MemoryFile.h"
#include "parent/Follower.h"

namespace {

using Tarnex::Parent::Record;
using Tarnex::Parent::RecordReader;

/// Reads pieces of the given sizes.
std::vector<std::string> Read(std::string_view text, std::string_view sizes) {
    std::vector<std::string> found;
    RecordReader reader(Tarnex::Parent::AllTags(), [&](const Record& record) {
        found.push_back(std::string(record.tag) + "=" + record.message);
    });
    for (std::size_t i = 0; !text.empty(); ++i) {
        const std::size_t size =
            sizes.empty() ? text.size()
                          : std::size_t{static_cast<unsigned char>(sizes[i % sizes.size()])} + 1;
        reader.Feed(text.substr(0, size));
        text.remove_prefix(std::min(size, text.size()));
    }
    reader.Finish();
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t sizes = std::min<std::size_t>(size, 8);
    const std::string_view text = input.substr(sizes);
    Tarnex::Fuzz::Require(Read(text, {}) == Read(text, input.substr(0, sizes)));
    return 0;
}
