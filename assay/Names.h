#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/support/Exception.h"
#include "parent/Item.h"

namespace Tarnex::Assay {

/// A name on the command line that means nothing here; the text has the nearest ones.
class UnknownName : public Exception {
public:
    using Exception::Exception;
};

/// What people may name.
struct Candidate {
    std::string name;                 ///< the exact one
    std::vector<std::string> others;  ///< by which people know it too
    std::string path;                 ///< of its file, links resolved; may be empty
};

/// The exact names, in the order of `all`, that the words mean: exact names, names in any case,
/// patterns with `*`, `?` and `[]`, other names, paths of files and of folders that hold them.
/// Blanks around a word don't count. Throws `UnknownName` for a word that means nothing;
/// the text calls it a `what` ("plugin") and has the nearest names.
std::vector<std::string> FindNames(const std::vector<std::string>& words,
                                   const std::vector<Candidate>& all, std::string_view what);

/// The same for one word; empty if it means nothing.
std::vector<std::string> FindNames(std::string_view word, const std::vector<Candidate>& all);

/// `There is no WHAT "WORD"; did you mean A or B?`
std::string DescribeUnknown(std::string_view word, const std::vector<Candidate>& all,
                            std::string_view what);

// What there is to name among the items, each name once.
std::vector<Candidate> GetPlugins(const std::vector<Parent::Item>& items);
std::vector<Candidate> GetCodecs(const std::vector<Parent::Item>& items);
std::vector<Candidate> GetImplementations(const std::vector<Parent::Item>& items);

/// All items, each by its own name and those of its parts: a codec's id names all its tests.
std::vector<Candidate> GetItems(const std::vector<Parent::Item>& items);

}  // namespace Tarnex::Assay
