#include "platform/linux/system/InstanceDoor.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>

namespace korvalin {
namespace {

Descriptor MakeSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

// A socket's name has room for about a hundred bytes.
std::optional<sockaddr_un> AddressOf(const std::filesystem::path& path) {
    sockaddr_un address = {};
    const std::string& name = path.native();
    if (name.size() >= sizeof address.sun_path) return std::nullopt;
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), address.sun_path);
    return address;
}

// What the system's calls want to be given.
const sockaddr* Plain(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address); // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
}

} // namespace

InstanceDoor::InstanceDoor(const std::filesystem::path& folder, std::string_view executableName)
    : path_(folder / fmt::format("instance-{}.socket", executableName)) {}

int InstanceDoor::Open() {
    const std::optional<sockaddr_un> address = AddressOf(path_);
    Descriptor made = MakeSocket();
    if (!address || !made) return -1;
    unlink(path_.c_str()); // a killed instance has left its own
    if (bind(made.Get(), Plain(*address), sizeof *address) != 0) return -1;
    socket_ = std::move(made);
    return socket_.Get();
}

void InstanceDoor::Answer() const {
    char knock = 0;
    while (recv(socket_.Get(), &knock, sizeof knock, 0) >= 0) {
    }
}

void InstanceDoor::Knock() const {
    const std::optional<sockaddr_un> address = AddressOf(path_);
    const Descriptor sender = MakeSocket();
    if (!address || !sender) return;
    static_cast<void>(sendto(sender.Get(), "", 1, 0, Plain(*address), sizeof *address));
}

} // namespace korvalin
