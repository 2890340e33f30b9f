# The Debian package: `cpack` in the build folder, or script/package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvalin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${KORVALIN_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop traffic monitor with a live chart and statistics")
set(CPACK_PACKAGE_DESCRIPTION "A small window shows the download and upload rates of the network
lines, an icon in the tray the volume of the billing period. Every byte
is counted once, on the day it moved, and every connection is recorded:
as a list, as a graph, and as sums per day, week or billing month. The
command line shows the same.")
set(CPACK_STRIP_FILES ON)

# Staged below DESTDIR, so that what an installation writes names the places of the installed system.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${KORVALIN_PAGE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Opens pages and folders; names the toolkit's own dialogs in the user's language.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, xdg-utils")
if(KORVALIN_UPDATE_SITE)
  # Loaded only when an update is looked for, so nothing else tells that they are needed.
  string(APPEND CPACK_DEBIAN_PACKAGE_RECOMMENDS ", libcurl4, libsodium23")
endif()
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The same source gives the same package: every time in it is the release's.
file(WRITE ${PROJECT_BINARY_DIR}/packaging/epoch.cmake "set(ENV{SOURCE_DATE_EPOCH} ${KORVALIN_RELEASE_SECONDS})\n")
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/epoch.cmake)
include(CPack)
