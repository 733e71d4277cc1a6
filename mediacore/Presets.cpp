#include "core/media/Presets.h"

#include <utility>

#include "core/support/Exception.h"

namespace Tarnex::Conf {
namespace {

class DataHelper : public Proc::RefCounted<IDataHelper> {
public:
    explicit DataHelper(Proc::Property property) : property(std::move(property)) {}

    Proc::Property GetPresetProperty() const override { return property; }

private:
    Proc::Property property;
};

}  // namespace

Proc::Pointer<IDataHelper> CreateDataHelper(const std::string& keyFilter,
                                            const std::string& codecId) {
    if (keyFilter != IPreset::KEY_FILTER_VIDEO_CODEC &&
        keyFilter != IPreset::KEY_FILTER_AUDIO_CODEC) {
        throw Exception("There are no presets of the kind \"" + keyFilter + "\"");
    }
    Proc::Property preset(keyFilter);
    preset.Add(Proc::Property(IPreset::ITEM_CODEC_ID, codecId));
    preset.Add(Proc::Property(IPreset::ITEM_SPEED, IPreset::SPEED_FASTEST));
    return new DataHelper(std::move(preset));
}

}  // namespace Tarnex::Conf
