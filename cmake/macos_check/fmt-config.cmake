# Debian's fmt is compiled for Linux only, so its headers are compiled here.
add_library(macos_check_fmt STATIC ${CMAKE_CURRENT_LIST_DIR}/fmt.cpp)
target_include_directories(macos_check_fmt SYSTEM
                           PUBLIC ${TALLOWCREST_MACOS_CHECK}/libraries/include)
add_library(fmt::fmt ALIAS macos_check_fmt)
set(fmt_FOUND TRUE)
