# The Debian package: `cpack` in the build folder, or script/package.
if(KORVALIN_UPDATE_SITE)
  if(KORVALIN_PACKAGE)
    message(FATAL_ERROR "A package has no KORVALIN_UPDATE_SITE: its package manager brings new versions")
  endif()
  return() # nothing that updates itself is packed
endif()

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

# korvalin_owner(VARIABLE library): the package of this system that a library belongs to; empty when nothing tells.
# The names differ: libcurl4 is libcurl4t64 elsewhere.
function(korvalin_owner variable library)
  file(REAL_PATH ${library} file)
  string(REGEX REPLACE "^/usr/" "/" short ${file}) # where /lib is a link, dpkg may know the file by either name
  set(${variable} "" PARENT_SCOPE)
  foreach(path IN ITEMS ${file} ${short})
    execute_process(COMMAND ${DPKG_QUERY} -S ${path} OUTPUT_VARIABLE answer ERROR_QUIET RESULT_VARIABLE failure)
    if(failure EQUAL 0 AND answer MATCHES "^([a-z0-9.+-]+)(:[a-z0-9]+)?: ")
      set(${variable} ${CMAKE_MATCH_1} PARENT_SCOPE)
      return()
    endif()
  endforeach()
endfunction()

# What the program loads by itself, which the linker knows nothing of.
find_program(DPKG_QUERY dpkg-query)
get_property(loaded GLOBAL PROPERTY KORVALIN_LOADED_LIBRARIES)
set(owners)
set(unknown)
foreach(library IN LISTS loaded)
  korvalin_owner(owner ${library})
  list(APPEND owners ${owner})
  if(NOT owner)
    list(APPEND unknown ${library})
  endif()
endforeach()
list(JOIN owners ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
if(unknown AND KORVALIN_PACKAGE)
  message(FATAL_ERROR "No package of this system holds what the program loads: ${unknown}")
endif()

# Opens pages and folders; names the toolkit's own dialogs in the user's language.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The same source gives the same package: every time in it is the release's.
file(WRITE ${PROJECT_BINARY_DIR}/packaging/epoch.cmake "set(ENV{SOURCE_DATE_EPOCH} ${KORVALIN_RELEASE_SECONDS})\n")
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/epoch.cmake)
include(CPack)
