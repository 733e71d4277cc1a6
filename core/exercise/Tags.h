#pragma once

namespace Tarnex::Exercise {

// The records of assayer-exercise, in the form of Assayer's. doc/exercise.md says what follows
// what. Contract: parents match these tags; keep them verbatim.
inline constexpr char LIST_MODULE_TAG[] = "LIST_MODULE";
inline constexpr char LISTED_MODULES_TAG[] = "LISTED_MODULES";
inline constexpr char EXERCISE_TAG[] = "EXERCISE";
inline constexpr char TITLE_TAG[] = "TITLE";
inline constexpr char STEP_TAG[] = "STEP";
inline constexpr char REMARK_TAG[] = "REMARK";
inline constexpr char EXERCISES_TAG[] = "EXERCISES";
inline constexpr char UNAVAILABLE_TAG[] = "UNAVAILABLE";
inline constexpr char EXERCISED_TAG[] = "EXERCISED";

}  // namespace Tarnex::Exercise
