#include <getopt.h>

#include <boost/filesystem/operations.hpp>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "collect/Installation.h"

namespace {

namespace fs = boost::filesystem;
namespace Collect = Tarnex::Collect;

constexpr const char* HELP =
    R"(Usage: assayer-collect [--into DIR] [FOLDER...]

Links the frei0r, LADSPA and Vamp modules of this machine into an installation directory of Assayer
and names them in its plugins.list. No module is loaded. Looks at the files named *.so in each
FOLDER and below. What was collected before and isn't there any more goes.

  --into DIR   the installation directory; by default that of this command
  FOLDER       where to look, for modules of any kind; by default the folders of FREI0R_PATH,
               LADSPA_PATH and VAMP_PATH (colons between them), and the usual ones of each kind
               whose variable isn't set
  --help       this text

Exit status: 0 the directory holds what was found, also if something was left out; 1 it couldn't be
brought up to date, the text on standard error says why; 2 the command line is wrong.
)";

struct Options {
    bool help = false;
    std::optional<fs::path> installation;
    std::vector<Collect::SearchFolder> folders;
};

class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

Options ParseOptions(int argc, char** argv) {
    static const option KNOWN[] = {{"into", required_argument, nullptr, 'i'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {nullptr, 0, nullptr, 0}};
    Options options;
    for (int choice = 0; (choice = getopt_long(argc, argv, "", KNOWN, nullptr)) != -1;) {
        if (choice == '?') {
            throw UsageError("try assayer-collect --help");
        }
        options.help = options.help || choice == 'h';
        if (choice == 'i') {
            options.installation = optarg;
        }
    }
    for (int i = optind; i < argc; ++i) {
        options.folders.push_back({argv[i]});
    }
    return options;
}

void RequireDirectory(const fs::path& path) {
    if (!fs::is_directory(path)) {
        throw std::runtime_error("not a directory: " + path.string());
    }
}

void Report(const Collect::Findings& findings, const Collect::Changes& changes) {
    for (const Collect::LeftOut& leftOut : findings.leftOut) {
        std::cout << "left out " << leftOut.path.string() << ": " << leftOut.reason << "\n";
    }
    for (const std::string& text : changes.renamed) {
        std::cout << text << "\n";
    }
    std::cout << findings.modules.size() << " modules; ";
    if (changes.linked.empty() && changes.removed.empty() && !changes.listWritten) {
        std::cout << "nothing changed\n";
    } else {
        std::cout << changes.linked.size() << " linked, " << changes.removed.size() << " removed\n";
    }
}

void Run(Options options) {
    const fs::path installation =
        options.installation.value_or(fs::read_symlink("/proc/self/exe").parent_path());
    RequireDirectory(installation);
    for (const Collect::SearchFolder& folder : options.folders) {
        RequireDirectory(folder.path);
    }
    if (options.folders.empty()) {
        options.folders = Collect::GetUsualFolders();
    }
    const auto findings = Collect::FindModules(options.folders, installation);
    Report(findings, Collect::UpdateInstallation(installation, findings.modules));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = ParseOptions(argc, argv);
        if (options.help) {
            std::cout << HELP;
        } else {
            Run(options);
        }
        return 0;
    } catch (const UsageError& error) {
        std::cerr << "assayer-collect: " << error.what() << "\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "assayer-collect: " << error.what() << "\n";
        return 1;
    }
}
