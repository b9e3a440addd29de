#pragma once

#include <gst/gst.h>
#include <memory>

// Owners of GStreamer's objects.
template <auto Release>
struct GstRelease {
    template <typename T>
    void operator()(T* object) const {
        Release(object);
    }
};

using GstElementPtr = std::unique_ptr<GstElement, GstRelease<gst_object_unref>>;
using GstFactoryPtr = std::unique_ptr<GstElementFactory, GstRelease<gst_object_unref>>;
using GstPadPtr = std::unique_ptr<GstPad, GstRelease<gst_object_unref>>;
using GstBusPtr = std::unique_ptr<GstBus, GstRelease<gst_object_unref>>;
using GstCapsPtr = std::unique_ptr<GstCaps, GstRelease<gst_caps_unref>>;
using GstSamplePtr = std::unique_ptr<GstSample, GstRelease<gst_sample_unref>>;
using GErrorPtr = std::unique_ptr<GError, GstRelease<g_error_free>>;

// A new element in the pipeline, which owns it. Null when it cannot be had.
inline GstElement* addElement(GstElement* pipeline, const char* factory) {
    GstElement* element = gst_element_factory_make(factory, nullptr);
    if (element)
        gst_bin_add(GST_BIN(pipeline), element);
    return element;
}
