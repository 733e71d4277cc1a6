#pragma once

#include <string>

#include "core/Export.h"
#include "core/media/Property.h"
#include "core/media/RefCountable.h"

namespace Tarnex::Conf {

struct IPreset {
    static constexpr char KEY_FILTER_VIDEO_CODEC[] = "VideoCodec";
    static constexpr char KEY_FILTER_AUDIO_CODEC[] = "AudioCodec";

    // Names of the items in a preset's property.
    static constexpr char ITEM_CODEC_ID[] = "CodecId";
    static constexpr char ITEM_SPEED[] = "Speed";
    /// Options for libavcodec, "key=value key=value". An unknown key makes the encoder throw
    /// `Tarnex::Exception`. Other implementations ignore this item.
    static constexpr char ITEM_OPTIONS[] = "Options";
    /// The fastest usable setting of the encoder: a check has to learn that it works, not to
    /// compress well.
    static constexpr char SPEED_FASTEST[] = "Fastest";
};

class TARNEX_TYPE IDataHelper : public virtual Proc::IRefCountable {
public:
    /// The settings for an encoder of the codec. Set them on the encoder's format.
    virtual Proc::Property GetPresetProperty() const = 0;
};

/// `keyFilter` is one of the two keys in `IPreset`. Throws `Tarnex::Exception` for any other.
TARNEX_API Proc::Pointer<IDataHelper> CreateDataHelper(const std::string& keyFilter,
                                                       const std::string& codecId);

}  // namespace Tarnex::Conf
