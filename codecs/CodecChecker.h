#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoderType.h"
#include "core/support/BrokenCodecs.h"
#include "core/support/CodecConfig.h"
#include "core/support/ThreadPool.h"

namespace Tarnex::Core::Utils {

/// The codec phase: tests every codec that the caller wants verified and the media core offers, and
/// keeps those that fail. Set up, run by `Check` once the core is up, then read. Thread-bound to
/// the main thread; the tests themselves may run on the pool.
class CodecChecker {
public:
    /// `useMultithreading`: tests run side by side on as many threads as the machine has.
    explicit CodecChecker(bool useMultithreading);

    /// Waits for the tests that are running.
    ~CodecChecker();

    CodecChecker(const CodecChecker&) = delete;
    CodecChecker& operator=(const CodecChecker&) = delete;

    void SetVerifiableCodecImpls(const std::vector<std::string>& implementations);
    void SetVerifiableCodecs(const std::vector<std::string>& codecIds);

    /// Codecs, by black-list option key, that are reported as broken without a test.
    void SetKnownBrokenCodecs(const CodecLists& codecs);

    /// Ids of tests, joined by commas, that are neither made nor reported. Throws
    /// `Tarnex::Exception` for a text that isn't such an id.
    void SetLastFailedCodecsTest(const std::string& ids);

    /// Tests decoders, then encoders; encoders alone if the last failed tests are all of encoders.
    /// Each test is named by a tagged line before it begins and each finding written when it is
    /// made. The result is the broken codecs by black-list option key. What a test throws is a
    /// finding; what anything else throws passes through.
    [[nodiscard]] CodecLists Check();

    /// The failure texts of `Check`.
    std::string GetErrorInfo() const { return errorInfo; }

    /// What could be tested of both coder types, by black-list option key, whatever failed last.
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
    std::vector<CoderType> ChoosePasses() const;
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
