# How scripts/macos-check compiles and links for macOS on another system. TALLOWCREST_MACOS_CHECK is its
# folder: the compiler's wrappers, one for each architecture, and the headers and stubs of libraries.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${TALLOWCREST_MACOS_ARCHITECTURE})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TALLOWCREST_MACOS_CHECK
     TALLOWCREST_MACOS_ARCHITECTURE)

set(CMAKE_CXX_COMPILER ${TALLOWCREST_MACOS_CHECK}/bin/${TALLOWCREST_MACOS_ARCHITECTURE}-c++)
set(CMAKE_AR ${TALLOWCREST_MACOS_CHECK}/bin/ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${TALLOWCREST_MACOS_CHECK}/bin/ranlib CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL : CACHE FILEPATH "")  # nothing is installed
# The target that the wrapper names has both.
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
# Linking takes the C++ library, which is compiled at the first use.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# Nothing of this system.
set(CMAKE_FIND_ROOT_PATH ${TALLOWCREST_MACOS_CHECK}/libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# With a window, the headers of libraries that are only compiled with; their files are never read.
if(TALLOWCREST_DESKTOP)
    set(Qt6_DIR ${CMAKE_CURRENT_LIST_DIR})
    set(CURL_INCLUDE_DIR ${TALLOWCREST_MACOS_CHECK}/libraries/include)
    set(CURL_LIBRARY ${TALLOWCREST_MACOS_CHECK}/libraries/lib/libcurl.tbd)
    set(OPENSSL_INCLUDE_DIR ${TALLOWCREST_MACOS_CHECK}/libraries/include)
    set(OPENSSL_CRYPTO_LIBRARY ${TALLOWCREST_MACOS_CHECK}/libraries/lib/libcrypto.tbd)
    set(CMAKE_OPTIMIZE_DEPENDENCIES ON)
else()
    set(CMAKE_DISABLE_FIND_PACKAGE_CURL ON)
    set(CMAKE_DISABLE_FIND_PACKAGE_OpenSSL ON)
endif()
set(SQLite3_INCLUDE_DIR ${TALLOWCREST_MACOS_CHECK}/libraries/include)
set(SQLite3_LIBRARY ${TALLOWCREST_MACOS_CHECK}/libraries/lib/libsqlite3.tbd)
set(nlohmann_json_DIR ${TALLOWCREST_MACOS_CHECK}/libraries/share/cmake/nlohmann_json)
set(fmt_DIR ${CMAKE_CURRENT_LIST_DIR})
