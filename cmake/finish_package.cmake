# Runs after CPack has built the package, and corrects two things in it: it has scripts that call
# ldconfig, which no module in a folder of its own needs, and its size counts a link as its target.
cmake_minimum_required(VERSION 3.25)

set(tree ${CPACK_TEMPORARY_DIRECTORY}/finished)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    file(REMOVE_RECURSE ${tree})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)

    # As Debian's own tools count: files in whole KiB, and one for each link and folder.
    file(GLOB_RECURSE entries LIST_DIRECTORIES TRUE ${tree}/usr/*)
    set(kilobytes 1)
    foreach(entry IN LISTS entries)
        set(bytes 1)
        if(NOT IS_SYMLINK ${entry} AND NOT IS_DIRECTORY ${entry})
            file(SIZE ${entry} bytes)
        endif()
        math(EXPR kilobytes "${kilobytes} + (${bytes} + 1023) / 1024")
    endforeach()
    file(READ ${tree}/DEBIAN/control control)
    string(REGEX REPLACE "Installed-Size: [0-9]+" "Installed-Size: ${kilobytes}" control "${control}")
    file(WRITE ${tree}/DEBIAN/control "${control}")

    execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${tree} ${package}
                    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
