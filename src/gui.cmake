# The windows: Qt 6 Widgets. Their files lie beside the core's, folder by folder.
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus Widgets)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)

add_library(korvalin_gui STATIC
  ${PROJECT_SOURCE_DIR}/resources/korvalin.qrc
  desktop/AboutBox.cpp
  desktop/Desktop.cpp
  desktop/DesktopWindows.cpp
  desktop/EndRequests.cpp
  desktop/frmFirstStart.cpp
  desktop/frmFirstStart.ui
  desktop/PanelService.cpp
  desktop/SettingsDialog.cpp
  dialogs/frmAbout.cpp
  dialogs/frmAbout.ui
  dialogs/frmDial.cpp
  dialogs/frmDial.ui
  dialogs/frmLogin.cpp
  dialogs/frmLogin.ui
  dialogs/frmMessage.cpp
  dialogs/frmMessage.ui
  dialogs/frmPopupMsg.cpp
  dialogs/frmPopupMsg.ui
  dialogs/LinkButton.cpp
  dialogs/Manual.cpp
  dialogs/MessageText.cpp
  dialogs/MessageTexts.cpp
  dialogs/QtDialDialog.cpp
  dialogs/QtMessageBoxes.cpp
  display/ChartPainter.cpp
  display/DialMenu.cpp
  display/frmMain.cpp
  display/frmMain.ui
  display/LinesMenu.cpp
  display/TrayIcon.cpp
  display/WindowFrame.cpp
  forms/ColorField.cpp
  forms/Colors.cpp
  forms/CurveSpans.cpp
  forms/Loaded.cpp
  forms/NameText.cpp
  forms/PictureBox.cpp
  forms/ProgramIcon.cpp
  forms/Styles.h
  lang/ApplyFormTexts.cpp
  lang/frmLanguage.cpp
  lang/frmLanguage.ui
  lang/ToolkitTexts.cpp
  platform/qt/CurlTransferControl.cpp
  platform/qt/DesktopNotifier.cpp
  platform/qt/QtEvents.cpp
  platform/qt/QtLocale.cpp
  platform/qt/QtNotificationArea.cpp
  platform/qt/QtScreen.cpp
  platform/qt/StatusNotifierHost.cpp
  platform/qt/XEmbedHost.cpp
  settingsdlg/ChartEditor.cpp
  settingsdlg/CurveFrame.cpp
  settingsdlg/frmEinstellungen.cpp
  settingsdlg/frmEinstellungen.ui
  settingsdlg/NetworkPages.cpp
  settingsdlg/NetworkTableModel.cpp
  stats/AllowanceBar.cpp
  stats/AllowanceEditor.cpp
  stats/frmStatistik.cpp
  stats/frmStatistikMenu.cpp
  stats/frmStatistik.ui
  stats/graph/GraphPage.cpp
  stats/graph/GraphPage.ui
  stats/graph/PictureCanvas.cpp
  stats/LongJob.cpp
  stats/StatList.cpp
  stats/StatTableModel.cpp
  stats/TariffEditor.cpp)
set_target_properties(korvalin_gui PROPERTIES AUTOMOC ON AUTORCC ON AUTOUIC ON)
target_compile_definitions(korvalin_gui PUBLIC QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
                                               QT_NO_URL_CAST_FROM_STRING QT_STRICT_ITERATORS)
target_precompile_headers(korvalin_gui PRIVATE <QtWidgets> ${PROJECT_SOURCE_DIR}/src/base/Precompiled.h)
target_link_libraries(korvalin_gui PUBLIC korvalin_core korvalin_linux Qt6::DBus Qt6::Widgets PRIVATE PkgConfig::XCB)

# The file name is the same on every system: an update replaces "Korvalin.exe". `korvalin` is what users type.
add_executable(korvalin_desktop desktop/main.cpp)
set_target_properties(korvalin_desktop PROPERTIES OUTPUT_NAME Korvalin SUFFIX .exe)
target_link_libraries(korvalin_desktop PRIVATE korvalin_gui)
add_custom_command(TARGET korvalin_desktop POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E create_symlink Korvalin.exe ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/korvalin
  VERBATIM)
