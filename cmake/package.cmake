# The Debian package: `make package`, or the target `package` of a build with TALLOWCREST_PACKAGE.
# packaging/CMakeLists.txt says which files are in it.
#
# The same commit gives the same bytes, in whatever folder and at whatever time it is built.

# All files in the package have the time of the last commit, or, of a source without its history,
# that of the release.
set(source_time $ENV{SOURCE_DATE_EPOCH})
if(NOT source_time)
    execute_process(
        COMMAND git -C ${PROJECT_SOURCE_DIR} log -1 --format=%ct
        OUTPUT_VARIABLE source_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT source_time)
    execute_process(COMMAND date -d ${TALLOWCREST_RELEASE_TIME} +%s OUTPUT_VARIABLE source_time
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package_time.cmake
     CONTENT "set(ENV{SOURCE_DATE_EPOCH} ${source_time})\n")

# No path of this machine in a program. Of two options that fit, the compiler takes the later one.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                    -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
set(CMAKE_SKIP_RPATH ON)
# What Debian builds its own packages with.
add_compile_options(-fstack-protector-strong -D_FORTIFY_SOURCE=2)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,--as-needed)
# Without it the addresses in tables of functions take 0.3 MB.
add_link_options(-Wl,-z,pack-relative-relocs)

set(CPACK_GENERATOR DEB)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/package_time.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/finish_package.cmake)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_PACKAGE_VENDOR "The Tallowcrest founders")
set(CPACK_PACKAGE_HOMEPAGE_URL ${TALLOWCREST_HOMEPAGE})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DESCRIPTION
"Tallowcrest watches CPU load, memory, disk space and the processes of this
machine, groups processes into applications, and tells in plain words what it
sees, in a window, in the tray, or as text in a terminal.
.
It proposes what to do next and asks before it does anything: to quit a process
or an application, to purge the file caches, or to move old caches and large
personal files to the Trash. It can look after the other machines of a tailnet
over the secure shell, and writes its samples for monitoring systems.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${TALLOWCREST_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# What the programs are linked to is found by dpkg-shlibdeps. Qt loads its plugin for X11 at run time.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The first loader that reads packed relocations; that is not found by itself.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36), qt6-qpa-plugins")
# Programs that it starts, the plugin for Wayland, the authorities that sign the certificates of
# providers, and a session bus for notifications and the tray.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "ca-certificates, default-dbus-session-bus | dbus-session-bus, openssh-client, pkexec, procps, qt6-wayland, rsync, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
    "gnome-keyring | keepassxc, gnome-system-monitor | plasma-systemmonitor | xfce4-taskmanager")

include(CPack)
