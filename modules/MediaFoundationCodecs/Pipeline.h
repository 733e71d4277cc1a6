#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "modules/MediaFoundationCodecs/GstPointers.h"

namespace Tarnex::MediaFoundation {

/// A chain of elements that takes buffers at one end and returns samples at the other. The
/// framework's own threads work in between; none is left after destruction. Thread-bound.
class Pipeline {
public:
    /// Failure texts begin with `title`. `elements` use the framework's launch syntax. Throws
    /// `Tarnex::Exception` if the chain can't be built.
    Pipeline(std::string title, const std::string& elements, bool isSingleThreaded);
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    /// Describes all buffers pushed after this call.
    void SetInputCaps(GstCaps* caps);
    void Push(GstOwner<GstBuffer> buffer);

    /// The next sample with more than headers, or null at the end. Calls `feed` whenever the
    /// pipeline waits for input; `feed` pushes some, or returns false at the end of the input.
    /// Throws `Tarnex::Exception` if an element reports an error or the end comes without output.
    [[nodiscard]] GstOwner<GstSample> Next(const std::function<bool()>& feed);

private:
    enum class Event { Output, Failure, End, Input };

    void Connect();
    void Run();
    Event Wait();
    GstOwner<GstSample> Take();
    void Finish();
    [[noreturn]] void Fail();
    [[noreturn]] void FailWithoutOutput();

    void Note(const std::function<void()>& change);
    void NoteMessage(GstMessage* message);
    static GstBusSyncReply OnMessage(GstBus* bus, GstMessage* message, gpointer self);

    std::string title;
    GstOwner<GstElement> pipeline;
    GstOwner<GstElement> input;
    GstOwner<GstElement> output;
    bool isRunning = false;
    bool hasOutput = false;

    std::mutex mutex;  // guards the members below, which the framework's threads change
    std::condition_variable changed;
    std::string failure;
    std::string warning;
    unsigned samples = 0;
    bool isInputWanted = false;
    bool isFinished = false;
    bool isAtEnd = false;
};

}  // namespace Tarnex::MediaFoundation
