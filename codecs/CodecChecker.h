#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoderType.h"
#include "core/support/BrokenCodecs.h"
#include "core/support/CodecConfig.h"
#include "core/support/ThreadPool.h"

namespace Tarnex::Core::Utils {

/// The codec phase: tests the wanted codecs that the media core offers and keeps those that fail.
/// Set the inputs, call `Check` once the core is started, then read the results. Thread-bound to
/// the main thread; the tests themselves may run on the pool.
class CodecChecker {
public:
    /// `useMultithreading`: run tests side by side, on as many threads as the machine has.
    explicit CodecChecker(bool useMultithreading);

    /// Waits for the tests that are running.
    ~CodecChecker();

    CodecChecker(const CodecChecker&) = delete;
    CodecChecker& operator=(const CodecChecker&) = delete;

    void SetVerifiableCodecImpls(const std::vector<std::string>& implementations);
    void SetVerifiableCodecs(const std::vector<std::string>& codecIds);

    /// Codecs to report as broken without a test, by black-list option key.
    void SetKnownBrokenCodecs(const CodecLists& codecs);

    /// Ids of tests, separated by commas, that are neither run nor reported. Throws
    /// `Tarnex::Exception` for a text that isn't such an id.
    void SetLastFailedCodecsTest(const std::string& ids);

    /// Tests decoders, then encoders; only encoders if all the last failed tests are encoders'.
    /// Logs each name before its test and each finding at once, as records. Returns the broken
    /// codecs by black-list option key. What a test throws is a finding. Any other exception is
    /// passed on.
    [[nodiscard]] CodecLists Check();

    /// All failure texts of `Check`.
    std::string GetErrorInfo() const { return errorInfo; }

    /// All codecs of both coder types that could be tested, by black-list option key; also those
    /// that failed last.
    CodecLists GetAllCodecsByOption() const;

private:
    struct ResultOfCheck {
        std::string codecId;
        std::string error;  ///< empty: passed
    };
    using ResultsByImplementation = std::map<std::string, std::vector<ResultOfCheck>>;

    enum class CodecListKey { ByImplementation, ByBlackListOption };

    class Results;
    struct CheckTask;

    CodecLists GetVerifiableCodecs(CoderType type, CodecListKey keyKind) const;
    CodecLists GetCodecsToCheck(CoderType type) const;
    bool IsKnownBroken(const CodecConfig& config) const;
    std::vector<CoderType> ChooseRounds() const;
    ResultsByImplementation CheckRunner(CoderType type);
    CodecLists CollectBrokenCodecs(CoderType type, const ResultsByImplementation& results);

    CodecLists knownBrokenCodecs;
    std::string errorInfo;
    std::vector<std::string> verifiableCodecs;
    std::vector<std::string> verifiableCodecImpls;
    std::vector<CodecConfig> lastFailedCodecsTest;
    bool useMultithreading;
    ThreadPool threadPool;
};

}  // namespace Tarnex::Core::Utils
