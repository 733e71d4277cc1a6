#pragma once

#include <gst/gst.h>

#include <memory>

namespace Tarnex::MediaFoundation {

struct GstRelease {
    void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
    void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
    void operator()(GstSample* sample) const { gst_sample_unref(sample); }
    void operator()(GstElement* element) const { gst_object_unref(element); }
    void operator()(GstElementFactory* factory) const { gst_object_unref(factory); }
    void operator()(GstBus* bus) const { gst_object_unref(bus); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(gchar* text) const { g_free(text); }
};

/// Owns a reference to one of the framework's objects, or memory that the framework allocated.
template <class T>
using GstOwner = std::unique_ptr<T, GstRelease>;

}  // namespace Tarnex::MediaFoundation
