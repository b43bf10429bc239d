# One interface target that every target of this project links: it makes warnings errors and passes
# the sanitizers of a preset to both compiler and linker.
set(TALLOWCREST_WARNINGS
    -Wall
    -Wextra
    -Wpedantic
    -Werror
    -Wshadow
    -Wconversion
    -Wsign-conversion
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    -Wcast-align
    -Wold-style-cast
    -Wnull-dereference
    -Wimplicit-fallthrough)
add_library(tallowcrest_options INTERFACE)
target_compile_options(tallowcrest_options INTERFACE ${TALLOWCREST_WARNINGS})
if(TALLOWCREST_SANITIZE)
    target_compile_options(tallowcrest_options INTERFACE -fsanitize=${TALLOWCREST_SANITIZE}
                                                         -fno-omit-frame-pointer -g
                                                         -fno-sanitize-recover=all)
    target_link_options(tallowcrest_options INTERFACE -fsanitize=${TALLOWCREST_SANITIZE})
    # Instrumented code causes false positives of the compiler's flow analysis. Clang has neither the
    # problem nor the second option, and would reject an unknown one.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(tallowcrest_options INTERFACE -Wno-null-dereference
                                                             -Wno-maybe-uninitialized)
    endif()
endif()

# The window spends its time in Qt. Its own code costs more by the memory that it takes.
add_library(tallowcrest_window_options INTERFACE)
target_compile_options(tallowcrest_window_options INTERFACE $<$<CONFIG:Release>:-Os>)

# Tests are usually built and run once, so optimising them costs more time than it saves. Files of
# one program are compiled together: a local name may be that of a function of another file.
add_library(tallowcrest_test_options INTERFACE)
target_compile_options(tallowcrest_test_options INTERFACE -O0 -Wno-shadow)
