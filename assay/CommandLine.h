#pragma once

#include <string>
#include <vector>

namespace Tarnex::Assay {

/// What the command line of a check says; texts are empty where an option isn't given.
struct CheckArguments {
    std::string check;  ///< "plugins", "codecs" or "all"
    std::string app;
    std::vector<std::string> plugins;
    std::vector<std::string> implementations;
    std::vector<std::string> codecs;
    unsigned int itemTime = 20;  ///< seconds
    unsigned int jobs = 0;       ///< 0: as many as the machine bears
    std::string known;
    std::string report;
    std::string log;
    bool events = false;
    bool quiet = false;
};

struct ReportArguments {
    std::vector<std::string> reports;
    std::string html;
    std::string junit;
};

struct CollectArguments {
    std::string into;
    std::vector<std::string> folders;
};

// The commands; each gives the exit status and throws what keeps it from its work.
int RunCheckCommand(const CheckArguments& arguments);
int RunListCommand(const CheckArguments& arguments);
int RunReportCommand(const ReportArguments& arguments);
int RunCompareCommand(const ReportArguments& arguments);
int RunCollectCommand(const CollectArguments& arguments);

/// The whole program: arguments to exit status. Throws nothing.
int RunCommandLine(int argc, char** argv);

}  // namespace Tarnex::Assay
