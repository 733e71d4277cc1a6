#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "parent/Item.h"
#include "platform/Terminal.h"

namespace Tarnex::Assay {

/// Runs the item's command under gdb and prints the stack where it crashed, ended, or was after
/// `itemTime` if it hangs, and which packages have the debug symbols that gdb misses. Throws
/// `Tarnex::Exception` where there is no gdb, or nothing to trace.
void PrintTrace(Platform::Terminal& terminal, const Parent::Item& item,
                std::chrono::seconds itemTime);

/// The stacks in what gdb printed, without its remarks on threads and libraries.
std::vector<std::string> FindStacks(const std::string& text);

/// The files whose functions stand in the stacks without the line of a source.
std::vector<std::string> FindWithoutSymbols(const std::vector<std::string>& stacks);

}  // namespace Tarnex::Assay
