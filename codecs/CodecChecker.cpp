#include "codecs/CodecChecker.h"

#include <glog/logging.h>

#include <algorithm>
#include <thread>
#include <utility>

#include "codecs/CodecTest.h"
#include "core/media/CoreManager.h"
#include "core/support/Constants.h"
#include "core/support/Mutex.h"
#include "core/support/Text.h"
#include "reporting/Logging.h"

namespace Tarnex::Core::Utils {
namespace {

/// Contract: in the log, these lines bear the name of this file.
void LogInput(const std::string& line) {
    LOG(INFO) << line;
}

}  // namespace

/// The results of a round, which outlives its tasks. Thread-safe.
class CodecChecker::Results {
public:
    void Add(const CodecConfig& config, const std::string& error) {
        const Lock lock(mutex);
        results[config.GetImplementation()].push_back({config.GetCodecId(), error});
    }

    ResultsByImplementation Take() {
        const Lock lock(mutex);
        return std::move(results);
    }

private:
    Mutex mutex;
    ResultsByImplementation results TARNEX_GUARDED_BY(mutex);
};

/// Tests one codec, logs its records, and adds the outcome to the round's results.
struct CodecChecker::CheckTask {
    CodecConfig config;
    Results& results;

    void operator()() const {
        LogTagged(TEST_CODEC_TAG, config.GetID());
        const std::string error = TestCodec(config, LogInput);
        if (!error.empty()) {
            LogTagged(ERROR_TAG, error);
            LogTagged(CODECS_TAG, config.GetID());
        }
        results.Add(config, error);
    }
};

CodecChecker::CodecChecker(bool isMultithreading)
    : useMultithreading(isMultithreading), threadPool(std::thread::hardware_concurrency()) {}

CodecChecker::~CodecChecker() {
    threadPool.Stop();
}

void CodecChecker::SetVerifiableCodecImpls(const std::vector<std::string>& implementations) {
    verifiableCodecImpls = implementations;
}

void CodecChecker::SetVerifiableCodecs(const std::vector<std::string>& codecIds) {
    verifiableCodecs = codecIds;
}

void CodecChecker::SetKnownBrokenCodecs(const CodecLists& codecs) {
    knownBrokenCodecs = codecs;
}

void CodecChecker::SetLastFailedCodecsTest(const std::string& ids) {
    for (const std::string& id : SplitAtCommas(ids)) {
        lastFailedCodecsTest.emplace_back(id);
    }
}

CodecLists CodecChecker::Check() {
    errorInfo.clear();
    CodecLists broken;
    for (const CoderType type : ChooseRounds()) {
        const CodecLists found = CollectBrokenCodecs(type, CheckRunner(type));
        broken.insert(found.begin(), found.end());
    }
    LogTagged(TESTED_CODECS_TAG, "true");
    return broken;
}

CodecLists CodecChecker::GetAllCodecsByOption() const {
    CodecLists all = GetVerifiableCodecs(CoderType::Decoder, CodecListKey::ByBlackListOption);
    all.merge(GetVerifiableCodecs(CoderType::Encoder, CodecListKey::ByBlackListOption));
    return all;
}

std::vector<CoderType> CodecChecker::ChooseRounds() const {
    const bool onlyEncodersFailed =
        !lastFailedCodecsTest.empty() &&
        std::all_of(
            lastFailedCodecsTest.begin(), lastFailedCodecsTest.end(),
            [](const CodecConfig& config) { return config.GetCoderType() == CoderType::Encoder; });
    if (onlyEncodersFailed) {
        return {CoderType::Encoder};
    }
    return {CoderType::Decoder, CoderType::Encoder};
}

CodecLists CodecChecker::GetVerifiableCodecs(CoderType type, CodecListKey keyKind) const {
    const auto factory = CoreManager::Instance().GetCodecFactory();
    CodecLists lists;
    for (const std::string& implementation : verifiableCodecImpls) {
        std::vector<std::string> ids;
        if (type == CoderType::Decoder) {
            ids = factory->GetDecoderCodecs(implementation);
        } else if (type == CoderType::Encoder) {
            ids = factory->GetEncoderCodecs(implementation);
        } else {
            return {};
        }
        std::erase_if(ids, [&](const std::string& id) { return !Contains(verifiableCodecs, id); });
        if (!ids.empty()) {
            lists.emplace(keyKind == CodecListKey::ByImplementation
                              ? implementation
                              : BlackListCodecOption(type, implementation),
                          std::move(ids));
        }
    }
    return lists;
}

CodecLists CodecChecker::GetCodecsToCheck(CoderType type) const {
    CodecLists lists = GetVerifiableCodecs(type, CodecListKey::ByImplementation);
    for (const CodecConfig& failed : lastFailedCodecsTest) {
        if (failed.IsEmpty() || failed.GetCoderType() != type) {
            continue;
        }
        const auto list = lists.find(failed.GetImplementation());
        if (list != lists.end()) {
            std::erase(list->second, failed.GetCodecId());
        }
    }
    return lists;
}

bool CodecChecker::IsKnownBroken(const CodecConfig& config) const {
    const auto list = knownBrokenCodecs.find(
        BlackListCodecOption(config.GetCoderType(), config.GetImplementation()));
    return list != knownBrokenCodecs.end() && Contains(list->second, config.GetCodecId());
}

CodecChecker::ResultsByImplementation CodecChecker::CheckRunner(CoderType type) {
    Results results;
    const auto reportKnownBroken = [&](const CodecConfig& config) {
        // Contract: parents match this text; keep it verbatim.
        const std::string message = config.GetID() + ": \nTest Error\n";
        LogTagged(ERROR_TAG, message);
        LogTagged(CODECS_TAG, config.GetID());
        results.Add(config, message);
    };
    const auto check = [&](const CodecConfig& config) {
        const CheckTask task{config, results};
        if (IsKnownBroken(config)) {
            reportKnownBroken(config);
        } else if (useMultithreading) {
            threadPool.AddTask(task);
        } else {
            task();
        }
    };
    try {
        for (const auto& [implementation, codecIds] : GetCodecsToCheck(type)) {
            for (const std::string& codecId : codecIds) {
                check(CodecConfig(type, implementation, codecId));
            }
        }
    } catch (...) {
        threadPool.Stop();  // The tasks refer to local variables.
        throw;
    }
    if (useMultithreading) {
        threadPool.Stop();
    }
    return results.Take();
}

CodecLists CodecChecker::CollectBrokenCodecs(CoderType type,
                                             const ResultsByImplementation& results) {
    CodecLists broken;
    for (const auto& [implementation, outcomes] : results) {
        std::vector<std::string> ids;
        for (const ResultOfCheck& outcome : outcomes) {
            if (!outcome.error.empty()) {
                errorInfo += implementation + "-" + outcome.codecId + ": \n" + outcome.error + "\n";
                ids.push_back(outcome.codecId);
            }
        }
        if (!ids.empty()) {
            broken[BlackListCodecOption(type, implementation)] = ids;
        }
    }
    return broken;
}

}  // namespace Tarnex::Core::Utils
