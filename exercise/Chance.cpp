#include "exercise/Chance.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace Tarnex::Exercise {

void ChangeChance() {
    static_cast<void>(std::rand());
    static_cast<void>(random());
    static_cast<void>(drand48());
    for (const std::time_t second = std::time(nullptr); std::time(nullptr) == second;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

}  // namespace Tarnex::Exercise
