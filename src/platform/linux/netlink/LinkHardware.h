#pragma once

#include "platform/linux/netlink/LinkMessage.h"

#include <filesystem>
#include <vector>

namespace korvalin {

/// Behind which links there is a device, found by looking at all links.
class LinkHardware {
  public:
    /// `netFolder` holds the kernel's folders of the interfaces.
    explicit LinkHardware(std::filesystem::path netFolder) : netFolder_(std::move(netFolder)) {}

    /// A look at all links begins.
    void BeginLook() { ports_.clear(); }

    /// What a link's message tells.
    void Note(const InterfaceRow& row, const LinkDetails& details);

    /// Completes HasHardware of the rows of the look, which stand by ascending index.
    template <typename Row>
    void Complete(std::vector<Row>& rows) const;

  private:
    struct Port {
        std::uint32_t Index;
        std::uint32_t Master;
    };

    template <typename Row>
    void AskFolders(std::vector<Row>& rows) const;

    std::filesystem::path netFolder_;
    std::vector<Port> ports_; // of bonds and teams
};

} // namespace korvalin
