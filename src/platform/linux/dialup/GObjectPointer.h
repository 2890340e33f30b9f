#pragma once

#include <glib-object.h>
#include <memory>

namespace korvalin {

struct GObjectReleaser {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// A reference to an object of GLib, given back at the end of its scope.
template <typename Object>
using GObjectPointer = std::unique_ptr<Object, GObjectReleaser>;

/// One more reference to an object; null for null.
template <typename Object>
GObjectPointer<Object> ShareGObject(Object* object) {
    if (object != nullptr) g_object_ref(object);
    return GObjectPointer<Object>(object);
}

struct GErrorReleaser {
    void operator()(GError* error) const { g_error_free(error); }
};

using GErrorPointer = std::unique_ptr<GError, GErrorReleaser>;

/// Where a function of GLib puts its error; what is there is taken over at the end of the statement.
class GErrorSlot {
  public:
    explicit GErrorSlot(GErrorPointer& error) : error_(error) {}
    ~GErrorSlot() { error_.reset(raw_); }
    GErrorSlot(const GErrorSlot&) = delete;
    GErrorSlot& operator=(const GErrorSlot&) = delete;
    operator GError**() { return &raw_; }

  private:
    GErrorPointer& error_;
    GError* raw_ = nullptr;
};

} // namespace korvalin
