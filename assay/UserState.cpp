#include "assay/UserState.h"

#include "platform/Environment.h"

namespace Tarnex::Assay {

boost::filesystem::path GetStateRoot() {
    return boost::filesystem::path(Platform::GetUserStateFolder()) / "assayer";
}

Reports::State GetState(const Installations::Installation& installation) {
    const auto key = Reports::State::GetKey(installation.GetDirectory(), installation.IsOwn());
    return {GetStateRoot(), key};
}

}  // namespace Tarnex::Assay
