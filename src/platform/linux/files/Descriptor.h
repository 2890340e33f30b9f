#pragma once

#include <unistd.h>
#include <utility>

namespace korvalin {

/// An open file descriptor, closed at the end of its scope.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }

    explicit operator bool() const { return descriptor_ >= 0; }
    int Get() const { return descriptor_; }

  private:
    int descriptor_ = -1;
};

} // namespace korvalin
