#pragma once

#include <string>

namespace Tarnex::Libav {

/// What libav says about one coder or file: the last 4 KB of its warnings and errors. They go with
/// the text of a failure; standard error belongs to the program.
class CoderLog {
public:
    /// `owner` begins the failure texts, such as "Encoder libx264".
    explicit CoderLog(std::string owner) : owner(std::move(owner)) {}

    void Append(const char* line);

    /// The text of a failure: owner, what it couldn't do, and what libav has logged so far.
    std::string Explain(const std::string& failure) const;
    std::string Explain(const std::string& failure, int libavError) const;

    /// Throws that text as a `Tarnex::Exception`.
    [[noreturn]] void Fail(const std::string& failure) const;
    [[noreturn]] void Fail(const std::string& failure, int libavError) const;

    /// Passes on a result of libav that is no error code.
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

/// While it lives, what libav logs on this thread goes to `log`. Scopes nest: a decoder calls the
/// encoder that feeds it. Without a scope, and on libav's own threads, the lines are dropped.
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
