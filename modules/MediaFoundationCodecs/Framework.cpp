#include "modules/MediaFoundationCodecs/Framework.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <mutex>
#include <string>

#include "modules/MediaFoundationCodecs/GstPointers.h"

namespace Tarnex::MediaFoundation {

namespace {

// Becomes standard error in child processes of this thread. -1: they inherit ours.
thread_local int childStandardError = -1;

void RedirectInChild() {
    if (childStandardError >= 0) {
        dup2(childStandardError, STDERR_FILENO);
    }
}

/// Silences the framework's plugin scanner. It is a child process and would write a line for each
/// broken plugin to standard error, which our parent reads. Leaves other threads' children alone.
class QuietChildren {
public:
    QuietChildren() {
        static std::once_flag once;
        std::call_once(once, [] { pthread_atfork(nullptr, nullptr, RedirectInChild); });
        childStandardError = open("/dev/null", O_WRONLY | O_CLOEXEC);
    }
    ~QuietChildren() {
        if (childStandardError >= 0) {
            close(childStandardError);
        }
        childStandardError = -1;
    }
    QuietChildren(const QuietChildren&) = delete;
    QuietChildren& operator=(const QuietChildren&) = delete;
};

/// Writes only messages that end the process: they are the last trace of the reason.
void WriteFatalMessage(const gchar* domain, GLogLevelFlags level, const gchar* message,
                       gpointer data) {
    if ((static_cast<unsigned>(level) & G_LOG_FLAG_FATAL) != 0) {
        g_log_default_handler(domain, level, message, data);
    }
}

/// Disables the plugin with libav's coders, which we test as an implementation of their own.
void LeaveOutForeignCoders() {
    GList* features = gst_registry_get_feature_list_by_plugin(gst_registry_get(), "libav");
    for (GList* item = features; item != nullptr; item = item->next) {
        gst_plugin_feature_set_rank(GST_PLUGIN_FEATURE(item->data), GST_RANK_NONE);
    }
    gst_plugin_feature_list_free(features);
}

std::string Start() {
    const QuietChildren quietChildren;
    gst_debug_remove_log_function(nullptr);  // removes the default, which writes to standard error
    g_log_set_default_handler(WriteFatalMessage, nullptr);
    GError* error = nullptr;
    if (gst_init_check(nullptr, nullptr, &error) == FALSE) {
        const GstOwner<GError> owner(error);
        return std::string("The system's media framework doesn't start: ") +
               (error != nullptr ? error->message : "no reason given");
    }
    LeaveOutForeignCoders();
    return {};
}

bool IsSoftware(const GstElementFactory* factory) {
    return gst_element_factory_list_is_type(const_cast<GstElementFactory*>(factory),
                                            GST_ELEMENT_FACTORY_TYPE_HARDWARE) == FALSE;
}

}  // namespace

const std::string& StartFramework() {
    static const std::string& failure = *new std::string(Start());
    return failure;
}

bool HasDecoder(const char* caps) {
    const GstOwner<GstCaps> input(gst_caps_from_string(caps));
    GList* decoders =
        gst_element_factory_list_get_elements(GST_ELEMENT_FACTORY_TYPE_DECODER, GST_RANK_MARGINAL);
    GList* fitting = gst_element_factory_list_filter(decoders, input.get(), GST_PAD_SINK, FALSE);
    bool found = false;
    for (const GList* item = fitting; item != nullptr; item = item->next) {
        found = found || IsSoftware(GST_ELEMENT_FACTORY(item->data));
    }
    gst_plugin_feature_list_free(fitting);
    gst_plugin_feature_list_free(decoders);
    return found;
}

bool HasElement(const char* name) {
    return GstOwner<GstElementFactory>(gst_element_factory_find(name)) != nullptr;
}

}  // namespace Tarnex::MediaFoundation
