#pragma once

#include <fstream>
#include <functional>
#include <map>
#include <string>

#include "assay/Commands.h"
#include "parent/Check.h"
#include "platform/Terminal.h"
#include "report/Accepted.h"
#include "report/Report.h"

namespace Tarnex::Assay {

using Reports::Json;
using Reports::Report;

/// Tells people and programs how a check goes.
class Reporter : public Parent::CheckListener {
public:
    /// Gives an item the command that it will have in the report.
    using FinishRepro = std::function<void(Parent::Item&)>;
    /// Is told the names of all that may be touched now.
    using KeepOpen = std::function<void(const std::vector<std::string>&)>;

    /// Throws `Tarnex::Exception` if the log can't be written or the list of accepted items not
    /// be read.
    Reporter(const Arguments& arguments, Platform::Terminal& terminal, FinishRepro finishRepro,
             KeepOpen keepOpen);

    /// Marks what the user accepts. Notes lines of the list that match nothing.
    void Accept(Report& report);

    void OnVerdict(const Parent::Item& item) override;
    void OnProgress(const Parent::Progress& progress) override;
    void OnOutput(std::size_t run, std::string_view bytes) override;
    void OnOpen(const std::vector<std::string>& names) override { keepOpen(names); }

    /// The last event. Throws `Tarnex::Exception` if not all events or not all of the log could be
    /// written.
    void Close(const Report& report, int status);

private:
    void WriteEvent(const Json& event) const;

    const Arguments& arguments;
    Platform::Terminal& terminal;
    const FinishRepro finishRepro;
    const KeepOpen keepOpen;
    Reports::AcceptedItems accepted;
    std::ofstream log;
    std::size_t loggedRun = std::string::npos;
    std::map<std::string, int> bad;
};

}  // namespace Tarnex::Assay
