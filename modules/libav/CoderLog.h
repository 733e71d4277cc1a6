#pragma once

#include <string>

namespace Tarnex::Libav {

/// Collects what libav logs for one coder or file: the last 4 KB of its warnings and errors. They
/// become part of failure texts. They never go to standard error, which the parent reads.
class CoderLog {
public:
    /// Failure texts begin with `owner`, such as "Encoder libx264".
    explicit CoderLog(std::string owner) : owner(std::move(owner)) {}

    void Append(const char* line);

    /// The text of a failure: the owner, the failure, and what libav has logged so far.
    std::string Explain(const std::string& failure) const;
    std::string Explain(const std::string& failure, int libavError) const;

    /// Throws `Tarnex::Exception` with the text of `Explain`.
    [[noreturn]] void Fail(const std::string& failure) const;
    [[noreturn]] void Fail(const std::string& failure, int libavError) const;

    /// Returns `result`, or fails if it is an error code of libav. `failure` names the step.
    int Check(int result, const char* failure) const {
        if (result < 0) {
            Fail(failure, result);
        }
        return result;
    }

private:
    std::string owner;
    std::string text;
};

/// Sends what libav logs on this thread to `log` while the scope lasts. Scopes nest, because a
/// decoder calls the encoder that feeds it. Drops what libav logs elsewhere or on its own threads.
class LogScope {
public:
    explicit LogScope(CoderLog& log);
    ~LogScope();
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

private:
    CoderLog* outer;
};

}  // namespace Tarnex::Libav
