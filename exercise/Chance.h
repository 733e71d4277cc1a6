#pragma once

namespace Tarnex::Exercise {

/// Changes what plugins take as chance: the random numbers that all users of the C library share,
/// and the second, which seeds the random numbers of others. Takes up to a second. Output that
/// differs afterwards isn't the plugin's fault.
void ChangeChance();

}  // namespace Tarnex::Exercise
