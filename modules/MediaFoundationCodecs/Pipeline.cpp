#include "modules/MediaFoundationCodecs/Pipeline.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>

#include <cstring>
#include <utility>

#include "core/support/Exception.h"

namespace Tarnex::MediaFoundation {

namespace {

/// A property that keeps an element from starting more threads.
struct ThreadLimit {
    const char* property;
    const char* value;
    const char* element = nullptr;  ///< null: any element that has the property
};

constexpr ThreadLimit THREAD_LIMITS[] = {
    {"threads", "1"},
    {"max-threads", "1"},
    {"n-threads", "1"},
    {"option-string", "pools=none:frame-threads=1", "x265enc"},
};

bool Concerns(const ThreadLimit& limit, GstElement* element) {
    const GstElementFactory* const factory = gst_element_get_factory(element);
    if (limit.element != nullptr && std::strcmp(GST_OBJECT_NAME(factory), limit.element) != 0) {
        return false;
    }
    return g_object_class_find_property(G_OBJECT_GET_CLASS(element), limit.property) != nullptr;
}

void LimitThreads(GstBin* /*bin*/, GstBin* /*parent*/, GstElement* element, gpointer /*data*/) {
    for (const ThreadLimit& limit : THREAD_LIMITS) {
        if (Concerns(limit, element)) {
            gst_util_set_object_arg(G_OBJECT(element), limit.property, limit.value);
        }
    }
}

/// The element's type. Its own name has a number that changes from run to run.
std::string NameOf(GstObject* source) {
    GstElementFactory* const factory =
        GST_IS_ELEMENT(source) ? gst_element_get_factory(GST_ELEMENT(source)) : nullptr;
    return factory != nullptr ? GST_OBJECT_NAME(factory) : GST_OBJECT_NAME(source);
}

/// The readable detail of a message. The first line only names a place in the framework's sources.
std::string DetailOf(const gchar* debug) {
    const char* const lineEnd = debug == nullptr ? nullptr : std::strchr(debug, '\n');
    return lineEnd == nullptr ? "" : std::string(" (") + (lineEnd + 1) + ")";
}

/// The text of an error or a warning, with the element that reports it.
std::string TextOf(GstMessage* message) {
    GError* error = nullptr;
    gchar* debug = nullptr;
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
        gst_message_parse_error(message, &error, &debug);
    } else {
        gst_message_parse_warning(message, &error, &debug);
    }
    const GstOwner<GError> errorOwner(error);
    const GstOwner<gchar> debugOwner(debug);
    return NameOf(GST_MESSAGE_SRC(message)) + ": " + error->message + DetailOf(debug);
}

bool HoldsOnlyHeaders(GstSample* sample) {
    return GST_BUFFER_FLAG_IS_SET(gst_sample_get_buffer(sample), GST_BUFFER_FLAG_HEADER);
}

GstOwner<GstElement> Parse(const std::string& title, const std::string& elements) {
    GError* error = nullptr;
    GstElement* bin = gst_parse_bin_from_description(elements.c_str(), FALSE, &error);
    GstOwner<GstElement> owner(bin);
    if (error != nullptr) {
        const GstOwner<GError> errorOwner(error);
        throw Exception(title + ": " + error->message);
    }
    return owner;
}

}  // namespace

Pipeline::Pipeline(std::string newTitle, const std::string& elements, bool isSingleThreaded)
    : title(std::move(newTitle)),
      pipeline(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)))) {
    if (isSingleThreaded) {
        g_signal_connect(pipeline.get(), "deep-element-added", G_CALLBACK(LimitThreads), nullptr);
    }
    gst_bin_add(GST_BIN(pipeline.get()), Parse(title, "appsrc name=in format=time ! " + elements +
                                                          " ! appsink name=out sync=false")
                                             .release());
    input.reset(gst_bin_get_by_name(GST_BIN(pipeline.get()), "in"));
    output.reset(gst_bin_get_by_name(GST_BIN(pipeline.get()), "out"));
    Connect();
}

Pipeline::~Pipeline() {
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    const GstOwner<GstBus> bus(gst_element_get_bus(pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
}

void Pipeline::Connect() {
    GstAppSrcCallbacks source{};
    source.need_data = [](GstAppSrc*, guint, gpointer self) {
        auto& me = *static_cast<Pipeline*>(self);
        me.Note([&me] { me.isInputWanted = true; });
    };
    gst_app_src_set_callbacks(GST_APP_SRC(input.get()), &source, this, nullptr);

    GstAppSinkCallbacks sink{};
    sink.new_sample = [](GstAppSink*, gpointer self) {
        auto& me = *static_cast<Pipeline*>(self);
        me.Note([&me] { ++me.samples; });
        return GST_FLOW_OK;
    };
    sink.eos = [](GstAppSink*, gpointer self) {
        auto& me = *static_cast<Pipeline*>(self);
        me.Note([&me] { me.isAtEnd = true; });
    };
    gst_app_sink_set_callbacks(GST_APP_SINK(output.get()), &sink, this, nullptr);

    const GstOwner<GstBus> bus(gst_element_get_bus(pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), OnMessage, this, nullptr);
}

void Pipeline::Note(const std::function<void()>& change) {
    const std::lock_guard lock(mutex);
    change();
    changed.notify_all();
}

// Runs on the thread that posts, so that an error arrives before the end of stream that it causes.
GstBusSyncReply Pipeline::OnMessage(GstBus* /*bus*/, GstMessage* message, gpointer self) {
    static_cast<Pipeline*>(self)->NoteMessage(message);
    gst_message_unref(message);
    return GST_BUS_DROP;
}

void Pipeline::NoteMessage(GstMessage* message) {
    const GstMessageType type = GST_MESSAGE_TYPE(message);
    if (type != GST_MESSAGE_ERROR && type != GST_MESSAGE_WARNING) {
        return;
    }
    // Keeps only the first message: it is the cause of those that follow.
    Note([&, text = TextOf(message)] {
        std::string& kept = type == GST_MESSAGE_ERROR ? failure : warning;
        if (kept.empty()) {
            kept = text;
        }
    });
}

void Pipeline::SetInputCaps(GstCaps* caps) {
    gst_app_src_set_caps(GST_APP_SRC(input.get()), caps);
}

void Pipeline::Push(GstOwner<GstBuffer> buffer) {
    Note([this] { isInputWanted = false; });
    gst_app_src_push_buffer(GST_APP_SRC(input.get()), buffer.release());
}

void Pipeline::Finish() {
    Note([this] { isFinished = true; });
    gst_app_src_end_of_stream(GST_APP_SRC(input.get()));
}

void Pipeline::Run() {
    isRunning = true;
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        Fail();
    }
}

Pipeline::Event Pipeline::Wait() {
    std::unique_lock lock(mutex);
    for (;; changed.wait(lock)) {
        if (samples > 0) {
            --samples;
            return Event::Output;
        }
        if (!failure.empty()) {
            return Event::Failure;
        }
        if (isAtEnd) {
            return Event::End;
        }
        if (isInputWanted && !isFinished) {
            return Event::Input;
        }
    }
}

GstOwner<GstSample> Pipeline::Take() {
    GstOwner<GstSample> sample(gst_app_sink_pull_sample(GST_APP_SINK(output.get())));
    if (!sample || HoldsOnlyHeaders(sample.get())) {
        return {};
    }
    hasOutput = true;
    return sample;
}

GstOwner<GstSample> Pipeline::Next(const std::function<bool()>& feed) {
    if (!isRunning) {
        Run();
    }
    for (;;) {
        switch (Wait()) {
            case Event::Output:
                if (GstOwner<GstSample> sample = Take()) {
                    return sample;
                }
                break;
            case Event::Input:
                if (!feed()) {
                    Finish();
                }
                break;
            case Event::Failure:
                Fail();
            case Event::End:
                if (!hasOutput) {
                    FailWithoutOutput();
                }
                return {};
        }
    }
}

void Pipeline::Fail() {
    const std::lock_guard lock(mutex);
    throw Exception(title + ": " + (failure.empty() ? "the pipeline doesn't start" : failure));
}

void Pipeline::FailWithoutOutput() {
    const std::lock_guard lock(mutex);
    throw Exception(title + " gave no output" + (warning.empty() ? "" : "; " + warning));
}

}  // namespace Tarnex::MediaFoundation
