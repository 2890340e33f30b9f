#pragma once

#include <functional>
#include <string>
#include <vector>

class QIcon;
class QMenu;

namespace korvalin {

/// Whether the desktop has something that shows icons.
enum class TrayHost {
    Unknown, ///< the desktop was asked and has not answered yet
    Absent,
    Present
};

/// The desktop's notification area with this program's one icon in it.
class NotificationArea {
  public:
    struct Hooks {
        /// Host() has another answer: an icon that was added before is gone, or can be added now.
        std::function<void()> HostChanged = [] {};
        /// The user clicked on the icon with the left button.
        std::function<void()> Clicked = [] {};
    };

    virtual ~NotificationArea() = default;

    virtual void Plug(Hooks hooks) = 0;

    /// Which kind of panel shows the icon now.
    virtual TrayHost Host() const = 0;

    /// Shows the icon; a right click on it opens `menu`. Nothing happens while there is no host.
    virtual void Add(const QIcon& icon, const std::string& tip, QMenu& menu) = 0;

    /// Takes the icon away if there is one.
    virtual void Remove() = 0;

    // Nothing happens without an icon.
    virtual void SetIcon(const QIcon& icon) = 0;
    /// The text under the mouse; lines end with a line feed.
    virtual void SetTip(const std::string& tip) = 0;

    /// The edge lengths, in device pixels, in which the icon is shown without being scaled.
    virtual std::vector<int> IconSizes() const = 0;
};

} // namespace korvalin
