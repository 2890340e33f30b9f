#pragma once

#include <memory>

namespace korvalin {

/// Builds the controls of a window from its Designer file, for members that need them from the beginning.
template <typename Ui, typename Window>
std::unique_ptr<Ui> MakeUi(Window& window) {
    auto ui = std::make_unique<Ui>();
    ui->setupUi(&window);
    return ui;
}

} // namespace korvalin
