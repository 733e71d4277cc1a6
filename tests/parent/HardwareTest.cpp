#include "parent/Hardware.h"

#include <gtest/gtest.h>

namespace {

using Tarnex::Parent::WhyUnavailable;

TEST(Hardware, OnlyACardThatIsThereCanFail) {
    const struct {
        const char* implementation;
        const char* text;
        std::vector<std::string> cards;
        const char* reason;  ///< empty: it failed
    } rows[] = {
        {"NVDEC_IMPL", "Cannot load libcuda.so.1", {}, "no NVIDIA card in this machine"},
        {"NVDEC_IMPL",
         "Cannot load libcuda.so.1",
         {"i915 8086:A780"},
         "no NVIDIA card in this machine"},
        {"NVDEC_IMPL", "Cannot load libcuda.so.1", {"i915 8086:A780", "nvidia 10DE:2330"}, ""},
        {"NVDEC_IMPL",
         "opening failed; libav logged: Codec not supported",
         {" 10DE:2330"},
         "the card can't: Codec not supported"},
        {"FFMPEG_IMPL", "Codec not supported", {}, ""},
    };
    for (const auto& [implementation, text, cards, reason] : rows) {
        EXPECT_EQ(WhyUnavailable(implementation, text, cards).value_or(""), reason) << text;
    }
}

}  // namespace
