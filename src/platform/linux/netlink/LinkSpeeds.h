#pragma once

#include "platform/linux/files/Descriptor.h"

#include <cstdint>
#include <string>

namespace korvalin {

/// The speeds that network drivers tell.
class LinkSpeeds {
  public:
    /// Bits per second of the link of that name; 0 when its driver does not know or there is no such link.
    std::uint64_t BitsPerSecond(const std::string& name);

  private:
    Descriptor socket_;
    std::int8_t maskWords_ = 0; // length of a set of link modes in this kernel, once it has told it
};

} // namespace korvalin
