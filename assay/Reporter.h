#pragma once

#include <fstream>
#include <functional>
#include <map>
#include <string>

#include "assay/Report.h"
#include "assay/Terminal.h"
#include "parent/Check.h"

namespace Tarnex::Assay {

/// Tells people and programs how a check goes.
class Reporter : public Parent::CheckListener {
public:
    /// Whoever wants to know of the listing, and may decide codecs by it.
    using TakeListing = std::function<void(const Parent::Listing&, std::vector<Parent::Item>&)>;
    /// Makes an item what it is in the report.
    using Finish = std::function<Parent::Item(Parent::Item)>;

    /// Appends to no log where `log` is empty; throws `Tarnex::Exception` if it can't be written.
    /// `events`: items go to standard output as JSON.
    Reporter(Terminal& terminal, bool events, const std::string& log, TakeListing takeListing,
             Finish finish);

    void OnVerdict(const Parent::Item& item) override;
    void OnProgress(const Parent::Progress& progress) override;
    void OnOutput(std::size_t run, std::string_view bytes) override;
    void OnListing(const Parent::Listing& listing, std::vector<Parent::Item>& codecs) override;

    /// The last event: the end of the check.
    void OnEnd(const Report& report, int status);

    /// Throws `Tarnex::Exception` if events or log couldn't be written, all of them.
    void Close();

private:
    void WriteEvent(const Json& event);

    Terminal& terminal;
    bool events;
    std::string logPath;
    std::ofstream log;
    std::size_t loggedRun = SIZE_MAX;
    std::map<Parent::Verdict, std::size_t> bad;
    TakeListing takeListing;
    Finish finish;
};

}  // namespace Tarnex::Assay
