#include "run/CommandLine.h"

#include <boost/throw_exception.hpp>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "core/support/Constants.h"
#include "core/support/ModuleOptions.h"
#include "core/support/Text.h"
#include "core/support/ioPath.h"
#include "reporting/Logging.h"

namespace Tarnex::Core::Utils {
namespace {

/// Positions of the arguments; the program's name is at 0.
enum Position {
    CHECK_TYPE = 1,
    TIMEOUT = 2,
    CODEC_IMPLS = 3,
    CODECS = 4,
    DISABLED_PLUGINS = 5,
    BROKEN_PLUGINS_PATH = 6,
    BROKEN_CODECS_PATH = 7,
    LAST_FAILED_PLUGIN = 8,
    LAST_FAILED_CODECS = 9,
    MULTITHREADING = 10
};

// Contract: parents match this text, its repeated example included; keep it verbatim.
constexpr char USAGE[] =
    "\n"
    "\tAssayer options:\n"
    "\t\tAssayer <plugins|codecs|all> CheckTimeoutInSeconds [VerifiableCodecImpls] "
    "[VerifiableCodecs] [BrokenPluginsPath] [BrokenCodecsPath] [LastFailedLoadPlugin] "
    "[LastFailedCodecsTest] [isUsingMultithreadingCodecChecking]\n"
    "\n"
    "\tExamples:\n"
    "\t\tAssayer plugins 60\n"
    "\t\tAssayer plugins 60\n"
    "\t\tAssayer codecs 10 \"MEDIA_FOUNDATION_IMPL\" \"CODEC_ID_AAC\"\n"
    "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" \n"
    "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" C:\\brokenPlugins.txt\n"
    "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" C:\\brokenPlugins.txt C:\\brokenCodecs.txt\n"
    "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" - C:\\brokenCodecs.txt\n";

/// The arguments by position. A missing one is empty.
class Arguments {
public:
    Arguments(int argc, char** argv) : count(argc), values(argv) {}

    std::string Get(Position position) const { return position < count ? values[position] : ""; }

    /// Like `Get`, but a placeholder counts as missing.
    std::string GetOptional(Position position) const {
        std::string text = Get(position);
        return text == EMPTY_VALUE ? std::string() : text;
    }

private:
    int count;
    char** values;
};

// Contract: parents match the reasons of refusals; keep them verbatim.
bool Refuse(const char* reason) {
    LogTagged(ERROR_TAG, reason);
    return false;
}

bool RefuseWrongCount(int argc) {
    std::cout << "Wrong number of command arguments: " << argc << USAGE << std::flush;
    return false;
}

/// Converts as `std::stoll` does, with fixed error texts: parents read them, and standard libraries
/// differ.
std::int64_t ToNumber(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        BOOST_THROW_EXCEPTION(std::invalid_argument("invalid stoll argument"));
    }
    if (errno == ERANGE) {
        BOOST_THROW_EXCEPTION(std::out_of_range("stoll argument out of range"));
    }
    return number;
}

const std::string& Identity(const std::string& text) {
    return text;
}

template <class ElementFunction = const std::string& (*)(const std::string&)>
std::string JoinWithDelimiter(const std::vector<std::string>& list, const std::string& delimiter,
                              ElementFunction elementText = Identity) {
    std::ostringstream stream;
    for (const std::string& element : list) {
        stream << elementText(element) << delimiter;
    }
    std::string text = stream.str();
    if (!text.empty()) {
        text.resize(text.size() - delimiter.size());
    }
    return text;
}

using PathAction = std::function<void(const ioPath&)>;

/// An existing file with the name of the placeholder counts as a file.
void LoadListFile(const std::string& text, const PathAction& found, const PathAction& missing) {
    const ioPath path(text);
    if (path.empty()) {
        return;
    }
    if (path.exists()) {
        found(path);
    } else if (path.utf8string() != EMPTY_VALUE) {
        missing(path);
    }
}

void WarnMissing(const ioPath& path) {
    // Contract: parents match this text; keep it verbatim.
    LogTagged(WARNING_TAG, "Can't find path: " + path.utf8string());
}

/// The names in a plugin list file, joined. Empty if there is no such file.
std::string LoadBrokenPlugins(const std::string& argument) {
    std::string joined;
    LoadListFile(
        argument,
        [&joined](const ioPath& path) {
            const OptionLists lists = LoadFromFile(path, FormatType::Plugins);
            joined = JoinWithDelimiter(ModuleOptionsToBlackPluginList(lists), ", ");
        },
        WarnMissing);
    return joined;
}

/// A codec list file as text, with its keys. Empty if there is no such file.
std::string LoadBrokenCodecs(const std::string& argument) {
    std::string text;
    LoadListFile(
        argument,
        [&text](const ioPath& path) {
            text =
                ModuleOptionsToString(LoadFromFile(path, FormatType::Codecs), FormatType::Codecs);
        },
        WarnMissing);
    return text;
}

}  // namespace

bool ParseCommandLine(int argc, char** argv, Config& config) {
    if (argc <= CHECK_TYPE) {
        return RefuseWrongCount(argc);
    }
    const Arguments arguments(argc, argv);
    const std::string checkTypeText = arguments.Get(CHECK_TYPE);
    if (checkTypeText.empty()) {
        return Refuse("Check Type is empty");
    }
    const std::string timeoutText = arguments.Get(TIMEOUT);
    if (timeoutText.empty()) {
        return Refuse("Check core timeout is empty");
    }
    const CheckType checkType(checkTypeText);
    std::string implsText;
    std::string codecsText;
    if (checkType == CheckType::Codecs || checkType == CheckType::All) {
        implsText = arguments.Get(CODEC_IMPLS);
        if (implsText.empty()) {
            return Refuse("Verifiable codecs implementations are empty");
        }
        codecsText = arguments.Get(CODECS);
        if (codecsText.empty()) {
            return Refuse("Verifiable codecs list are empty");
        }
    }
    const std::string brokenPlugins = LoadBrokenPlugins(arguments.Get(BROKEN_PLUGINS_PATH));
    const std::string brokenCodecs = LoadBrokenCodecs(arguments.Get(BROKEN_CODECS_PATH));
    const bool isMultithreaded =
        argc == MULTITHREADING + 1 && arguments.GetOptional(MULTITHREADING) == "1";

    // The time-out is converted last, so that problems of the list files are reported in any case.
    Config parsed;
    parsed.checkTimeoutInSeconds = ToNumber(timeoutText);
    parsed.checkType = checkType;
    parsed.brokenCodecs = BrokenCodecs(brokenCodecs);
    parsed.brokenPlugins = BrokenPlugins(brokenPlugins);
    parsed.verifiableCodecImpls = SplitAtCommas(implsText);
    parsed.verifiableCodecs = SplitAtCommas(codecsText);
    parsed.extraDisabledPlugins = arguments.GetOptional(DISABLED_PLUGINS);
    parsed.lastFailedLoadPlugin = arguments.GetOptional(LAST_FAILED_PLUGIN);
    parsed.lastFailedCodecsTest = arguments.GetOptional(LAST_FAILED_CODECS);
    parsed.isUsingMultithreadingCodecChecking = isMultithreaded;
    config = std::move(parsed);
    return true;
}

}  // namespace Tarnex::Core::Utils
