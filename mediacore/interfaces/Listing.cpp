#include "mediacore/interfaces/Listing.h"

#include <fmt/format.h>

namespace Tarnex::Core {
namespace {

constexpr std::int64_t MOST = 100'000;  // a hundred times what the largest collections hold

}  // namespace

void RequireCredible(const SharedLibrary& library, std::int64_t count, const char* what) {
    if (count < 0 || count > MOST) {
        library.Refuse(fmt::format("claims to have {} {}", count, what));
    }
}

}  // namespace Tarnex::Core
