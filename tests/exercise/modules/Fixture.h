#pragma once

#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

/// A gain that is right, unless ASSAYER_TEST_FAULT names a fault: "crash activate" or "nan again".
namespace Fixture {

inline bool Is(std::string_view fault) {
    static const char* const wanted = std::getenv("ASSAYER_TEST_FAULT");
    return wanted != nullptr && fault == wanted;
}

/// Each interface calls it in its functions, by the names that the tests give these: "create",
/// "activate", "process", "deactivate", "destroy".
inline void At(const std::string& place) {
    if (Is("crash " + place)) {
        volatile int* volatile nowhere = nullptr;
        *nowhere = 1;
    } else if (Is("hang " + place)) {
        for (;;) {
            pause();
        }
    } else if (Is("exit " + place)) {
        std::_Exit(17);
    } else if (Is("throw " + place)) {
        throw std::runtime_error("reason");
    }
}

constexpr float MAXIMUM = 2;

struct Gain {
    float value = 1;
    int blocks = 0;
    int activations = 0;
    bool isSpoiled = false;

    static float& Shared() {
        static float shared = 0;
        return shared;
    }

    void Activate() {
        At("activate");
        ++activations;
        blocks = 0;
        Shared() = 0;
    }

    bool IsBad() {
        const bool isMaximum = value == MAXIMUM;
        isSpoiled = isSpoiled || (isMaximum && Is("nan at maximum for good"));
        return (Is("nan in block 2") && blocks == 2) || (Is("nan again") && activations == 2) ||
               (Is("nan at maximum") && isMaximum) || isSpoiled;
    }

    void Process(const float* input, float* output, std::size_t frames) {
        At("process");
        ++blocks;
        if (Is("untouched")) {
            return;
        }
        for (std::size_t i = 0; i < frames; ++i) {
            const float shared = Is("disturbing") ? Shared() * 0.5F : 0;
            output[i] = input[i] * value + shared;
            Shared() = output[i];
        }
        if (IsBad()) {
            output[frames / 2] = NAN;
        }
        if (Is("allocating")) {
            void* volatile memory = std::malloc(100);
            std::free(memory);
        }
        if (Is("denormal")) {
            output[0] = 1e-40F;
        }
        if (Is("beyond")) {
            output[frames] = 1;
        }
    }
};

}  // namespace Fixture
