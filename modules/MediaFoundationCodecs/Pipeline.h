#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "modules/MediaFoundationCodecs/GstPointers.h"

namespace Tarnex::MediaFoundation {

/// A row of elements that takes buffers at one end and gives samples at the other. Thread-bound;
/// the framework's own threads work between the two ends, all of them gone after destruction.
class Pipeline {
public:
    /// `title` begins each failure text; `elements` are in the framework's launch syntax. Throws
    /// `Tarnex::Exception` if they can't be put together.
    Pipeline(std::string title, const std::string& elements, bool isSingleThreaded);
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    /// Describes the buffers that are pushed from now on.
    void SetInputCaps(GstCaps* caps);
    void Push(GstOwner<GstBuffer> buffer);

    /// The next sample that holds more than headers, empty at the end. Calls `feed`, which pushes
    /// some input or returns false at its end, whenever the pipeline waits for input. Throws
    /// `Tarnex::Exception` for what an element reports and for an end without any output.
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

    std::mutex mutex;  // guards what follows, which the framework's threads change
    std::condition_variable changed;
    std::string failure;
    std::string warning;
    unsigned samples = 0;
    bool isInputWanted = false;
    bool isFinished = false;
    bool isAtEnd = false;
};

}  // namespace Tarnex::MediaFoundation
