#pragma once

#include <string>
#include <vector>

#include "parent/Check.h"
#include "platform/Terminal.h"

namespace Tarnex::Assay {

/// What the command tells a script. A signal adds its number to 128.
enum Status : int {
    STATUS_GOOD = 0,
    STATUS_BAD = 1,         ///< something is bad, or got worse
    STATUS_USAGE = 2,       ///< the command line is wrong
    STATUS_INCOMPLETE = 3,  ///< the check isn't complete, or a file can't be read or written
    STATUS_SIGNAL = 128
};

/// What a command line may say; empty where it doesn't.
struct Arguments {
    std::string check;               ///< "plugins", "codecs" or "all"
    std::vector<std::string> files;  ///< modules and bundles, checked by themselves
    std::string app;
    Parent::CheckOptions options;  ///< `jobs` 0: as many as the machine bears
    std::string known;
    std::string accept;
    std::string report;
    std::string log;
    bool events = false;
    bool quiet = false;
    std::vector<std::string> reports;
    std::string html;
    std::string junit;
    std::string metrics;
    std::string into;
    std::vector<std::string> folders;
    std::vector<std::string> names;  ///< of items to show
    bool trace = false;
    bool onlyChanged = false;
    bool useKnown = false;  ///< `known` may be empty: what the state knows
    bool bad = false;
    bool json = false;
    std::string folder;
};

// The commands; each gives the exit status and throws what keeps it from its work.
int Check(const Arguments& arguments);
int List(const Arguments& arguments);
int Collect(const Arguments& arguments);
int ShowReports(const Arguments& arguments);
int CompareReports(const Arguments& arguments);
int Show(const Arguments& arguments);
int ShowTrusted(const Arguments& arguments);

}  // namespace Tarnex::Assay
