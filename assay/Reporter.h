#pragma once

#include <fstream>
#include <map>
#include <string>

#include "assay/Saving.h"
#include "assay/Terminal.h"
#include "parent/Check.h"

namespace Tarnex::Assay {

/// Tells people and programs how a check goes.
class Reporter : public Parent::CheckListener {
public:
    /// `events`: items go to standard output, as JSON and as `saved` will have them. Throws
    /// `Tarnex::Exception` if the log, empty for none, can't be written.
    Reporter(Terminal& terminal, const SavedReport& saved, bool events, const std::string& log);

    void OnVerdict(const Parent::Item& item) override;
    void OnProgress(const Parent::Progress& progress) override;
    void OnOutput(std::size_t run, std::string_view bytes) override;

    /// The last event. Throws `Tarnex::Exception` if not all events or not all of the log could be
    /// written.
    void Close(const Report& report, int status);

protected:
    void WriteEvent(const Json& event) const;

    Terminal& terminal;
    const SavedReport& saved;
    bool events;
    std::string logPath;
    std::ofstream log;
    std::size_t loggedRun = std::string::npos;
    std::map<std::string, int> bad;
};

}  // namespace Tarnex::Assay
