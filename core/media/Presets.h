#pragma once

#include <string>

#include "core/Export.h"
#include "core/media/Property.h"
#include "core/media/RefCountable.h"

namespace Tarnex::Conf {

struct IPreset {
    static constexpr char KEY_FILTER_VIDEO_CODEC[] = "VideoCodec";
    static constexpr char KEY_FILTER_AUDIO_CODEC[] = "AudioCodec";

    // Items of a preset's property.
    static constexpr char ITEM_CODEC_ID[] = "CodecId";
    static constexpr char ITEM_SPEED[] = "Speed";
    /// Options of libavcodec, "key=value key=value". An unknown key is a `Tarnex::Exception`; other
    /// implementations don't read the item.
    static constexpr char ITEM_OPTIONS[] = "Options";
    /// A coder chooses its fastest usable setting: a check wants to know that it works, not to
    /// compress well.
    static constexpr char SPEED_FASTEST[] = "Fastest";
};

class TARNEX_TYPE IDataHelper : public virtual Proc::IRefCountable {
public:
    /// The settings for an encoder of the codec, to be put on its format.
    virtual Proc::Property GetPresetProperty() const = 0;
};

/// `keyFilter` is one of the two keys of `IPreset`; another one is a `Tarnex::Exception`.
TARNEX_API Proc::Pointer<IDataHelper> CreateDataHelper(const std::string& keyFilter,
                                                       const std::string& codecId);

}  // namespace Tarnex::Conf
