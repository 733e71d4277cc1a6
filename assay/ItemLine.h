#pragma once

#include <string>
#include <vector>

#include "parent/Item.h"
#include "platform/Terminal.h"

namespace Tarnex::Assay {

/// How wide the columns of verdicts and names are, and a line at most.
struct Columns {
    std::size_t verdict = 8;  ///< the longest of the bad verdicts
    std::size_t name = 0;
    std::size_t all = 0;  ///< 0: as long as it takes
};

/// For a terminal or what isn't one. `items`: those that are going to be shown; empty: unknown.
Columns ChooseColumns(const Platform::Terminal& terminal,
                      const std::vector<const Parent::Item*>& items = {});

/// Verdict, name, then whatever says why, each once; as many lines as the width needs, broken
/// between words.
std::vector<std::string> DescribeItem(const Parent::Item& item, const Columns& columns);

/// `head` and the text in lines of at most `width` columns, broken between words alone: a longer
/// word has a line for itself. All lines but the first begin with `indent` blanks.
std::vector<std::string> Wrap(const std::string& head, const std::string& text, std::size_t width,
                              std::size_t indent);

/// Writes the lines, with the verdict in its colour. `passing`: something better is to follow.
void PrintItem(Platform::Terminal& terminal, const Parent::Item& item, const Columns& columns,
               bool passing = false);

/// Breaks the text between words where this is a terminal.
void PrintWrapped(Platform::Terminal& terminal, const std::string& head, const std::string& text,
                  std::size_t indent = 0);

/// Of a verdict.
Platform::Colour GetColour(Parent::Verdict verdict);

}  // namespace Tarnex::Assay
