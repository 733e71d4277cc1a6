#include <gtest/gtest.h>

#include "core/media/CoreManager.h"

/// The core is started once for all tests, as in the program: modules stay in a process.
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
