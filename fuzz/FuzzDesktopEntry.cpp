// Autostart entries that the user or another program has written.
#include "Require.h"
#include "platform/linux/store/DesktopEntry.h"

using namespace korvalin;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto path = ReadAutostartEntry(text);
    Require(!path || !IsSwitchedOff(text));
    return 0;
}
