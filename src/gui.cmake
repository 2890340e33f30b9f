# The windows: Qt 6 Widgets.
