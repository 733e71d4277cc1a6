#include <gtest/gtest.h>

#include "core/media/CoreManager.h"

/// Starts the core once for all tests, as the program does: modules stay loaded.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    Tarnex::Core::CoreManager& core = Tarnex::Core::CoreManager::Instance();
    core.GetComputingResourceManager()->computingResourcesFlag = true;
    core.Initialize({}, {}, nullptr, nullptr, true);
    core.WaitUntilInitialized();
    const int result = RUN_ALL_TESTS();
    core.Uninitialize();
    return result;
}
