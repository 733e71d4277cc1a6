#include "modules/common/EncoderOptions.h"

#include "core/media/CoreManager.h"
#include "core/media/Presets.h"

namespace Tarnex::Modules {

bool IsSingleThreaded() {
    return Core::CoreManager::Instance().GetComputingResourceManager()->computingResourcesFlag;
}

EncoderOptions ReadEncoderOptions(const Proc::Property& preset) {
    return {.isFastest = preset.Get(Conf::IPreset::ITEM_SPEED) == Conf::IPreset::SPEED_FASTEST,
            .isSingleThreaded = IsSingleThreaded(),
            .own = preset.Get(Conf::IPreset::ITEM_OPTIONS)};
}

}  // namespace Tarnex::Modules
