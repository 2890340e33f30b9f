# Where everything lies on a system. The program finds its texts beside itself or in ../share/korvalin,
# the manual beside itself or in ../share/doc/korvalin.
include(GNUInstallDirs)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(GZIP gzip REQUIRED)

set(generated ${PROJECT_BINARY_DIR}/packaging)
set(changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(changelog_tool ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/packaging/debian_changelog.py ${changelog})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${changelog} ${PROJECT_SOURCE_DIR}/packaging/debian_changelog.py ${PROJECT_SOURCE_DIR}/src/dialogs/MakerInfo.h)

# The latest release: its day is the day of all that is packed.
execute_process(COMMAND ${changelog_tool} --latest OUTPUT_VARIABLE latest COMMAND_ERROR_IS_FATAL ANY)
list(GET latest 0 changelog_version)
list(GET latest 1 KORVALIN_RELEASE_DATE)
list(GET latest 2 KORVALIN_RELEASE_SECONDS)
if(NOT changelog_version VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "CHANGELOG.md begins with ${changelog_version}, but this is version ${PROJECT_VERSION}")
endif()

# korvalin_maker(VARIABLE name): a constant of the header that names the maker.
function(korvalin_maker variable name)
  file(STRINGS ${PROJECT_SOURCE_DIR}/src/dialogs/MakerInfo.h line REGEX " ${name} = ")
  string(REGEX REPLACE ".*\"(.*)\".*" "\\1" value "${line}")
  set(${variable} ${value} PARENT_SCOPE)
endfunction()
korvalin_maker(KORVALIN_PAGE ProgramPage)
korvalin_maker(KORVALIN_HELP_PAGE HelpPage)
korvalin_maker(support_mail SupportMail)
set(KORVALIN_MAINTAINER "The Korvalin developers <${support_mail}>")

# Software centres want the maker's domain, last part first: "https://www.example.org/" gives "org.example.korvalin".
string(REGEX REPLACE "^https://(www\\.)?([^/]+).*" "\\2" domain ${KORVALIN_PAGE})
string(REPLACE "." ";" domain ${domain})
list(REVERSE domain)
list(JOIN domain "." KORVALIN_COMPONENT)
string(APPEND KORVALIN_COMPONENT ".korvalin")

# korvalin_compressed(file): compresses a generated file without a time or a name in it.
function(korvalin_compressed file)
  execute_process(COMMAND ${GZIP} -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# ---- programs and texts

install(TARGETS korvalin-cli RUNTIME)
if(KORVALIN_GUI)
  # What is "Korvalin.exe" in a program folder has a plain name on a system, where nothing updates it but the system.
  install(PROGRAMS $<TARGET_FILE:korvalin_desktop> TYPE BIN RENAME korvalin)
  install(CODE "set(strip \"${CMAKE_STRIP}\")
set(program \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/korvalin\")")
  install(CODE [[if(CMAKE_INSTALL_DO_STRIP)
  execute_process(COMMAND ${strip} ${program} COMMAND_ERROR_IS_FATAL ANY)
endif()]])
endif()
install(FILES ${PROJECT_SOURCE_DIR}/resources/lang/Korvalin.lng DESTINATION ${CMAKE_INSTALL_DATADIR}/korvalin)

# ---- the services: they name the program where it is installed

install(CODE "set(packaging \"${PROJECT_SOURCE_DIR}/packaging\")
set(programs \"${CMAKE_INSTALL_BINDIR}\")")
install(CODE [[foreach(name IN ITEMS korvalin-record.service korvalin-metrics.service korvalin-metrics.timer)
  set(unit "${CMAKE_INSTALL_PREFIX}/lib/systemd/user/${name}")
  message(STATUS "Installing: $ENV{DESTDIR}${unit}")
  file(READ ${packaging}/${name} text)
  string(REPLACE "/usr/bin/" "${CMAKE_INSTALL_PREFIX}/${programs}/" text "${text}")
  file(WRITE "$ENV{DESTDIR}${unit}" "${text}")
  file(CHMOD "$ENV{DESTDIR}${unit}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${unit}")
endforeach()]])

# ---- the desktop

if(KORVALIN_GUI)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  foreach(size IN ITEMS 16 32 48 256)
    install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/korvalin-${size}.png
      DESTINATION ${icons}/${size}x${size}/apps RENAME korvalin.png)
  endforeach()
  install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/korvalin.svg DESTINATION ${icons}/scalable/apps)
  install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/korvalin-symbolic.svg DESTINATION ${icons}/symbolic/apps)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/org.example.korvalin.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/korvalin.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  set(metainfo_file ${PROJECT_SOURCE_DIR}/packaging/korvalin.metainfo.xml.in)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${metainfo_file})
  file(READ ${metainfo_file} metainfo)
  if(NOT KORVALIN_SCREENSHOTS)
    # A software centre would show them as broken.
    string(REGEX REPLACE " *<screenshots>.*</screenshots>\n" "" metainfo "${metainfo}")
  elseif(NOT KORVALIN_SCREENSHOTS MATCHES "^https://[^\"<>&]+/$")
    message(FATAL_ERROR "KORVALIN_SCREENSHOTS must be a folder on https, ending in \"/\": ${KORVALIN_SCREENSHOTS}")
  endif()
  file(CONFIGURE OUTPUT ${generated}/${KORVALIN_COMPONENT}.metainfo.xml CONTENT "${metainfo}" @ONLY)
  install(FILES ${generated}/${KORVALIN_COMPONENT}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
endif()

# ---- documents and completion

foreach(page IN ITEMS korvalin korvalin-cli)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/${page}.1.in ${generated}/${page}.1 @ONLY)
  korvalin_compressed(${generated}/${page}.1)
  install(FILES ${generated}/${page}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
execute_process(COMMAND ${changelog_tool} ${KORVALIN_MAINTAINER} OUTPUT_FILE ${generated}/changelog
  COMMAND_ERROR_IS_FATAL ANY)
korvalin_compressed(${generated}/changelog)
install(FILES ${generated}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvalin)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvalin RENAME copyright)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/manual DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvalin
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

set(completions ${PROJECT_SOURCE_DIR}/packaging/completions)
install(FILES ${completions}/korvalin-cli.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME korvalin-cli)
install(FILES ${completions}/_korvalin-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES ${completions}/korvalin-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
