#pragma once

#include <fstream>
#include <map>
#include <optional>
#include <string>

#include "assay/Commands.h"
#include "assay/Saving.h"
#include "parent/Check.h"
#include "platform/Terminal.h"

namespace Tarnex::Assay {

/// Tells people and programs how a check goes, and spares what is known.
class Reporter : public Parent::CheckListener {
public:
    /// Throws `Tarnex::Exception` if the log can't be written or the earlier report not be read.
    Reporter(const Arguments& arguments, Platform::Terminal& terminal, const SavedReport& saved);

    /// Gives items that ended a run in the earlier report the verdict of then, if all is as it was.
    void SpareKnown(std::vector<Parent::Item>& items) const;

    void OnVerdict(const Parent::Item& item) override;
    void OnProgress(const Parent::Progress& progress) override;
    void OnOutput(std::size_t run, std::string_view bytes) override;
    void OnListing(const Parent::Listing& listing, std::vector<Parent::Item>& codecs) override;

    /// The last event. Throws `Tarnex::Exception` if not all events or not all of the log could be
    /// written.
    void Close(const Report& report, int status);

    Json environment;  ///< today's

private:
    void WriteEvent(const Json& event) const;

    const Arguments& arguments;
    Platform::Terminal& terminal;
    const SavedReport& saved;
    std::optional<Report> known;
    std::ofstream log;
    std::size_t loggedRun = std::string::npos;
    std::map<std::string, int> bad;
};

}  // namespace Tarnex::Assay
