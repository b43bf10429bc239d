# One interface target that every target of this project links: warnings are errors, and the
# sanitizers of a preset reach compile and link steps alike.
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
    # Instrumented code defeats the compiler's own flow analysis, which then cries wolf. Clang knows
    # neither the trouble nor the second name, and an unknown name would be an error there.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(tallowcrest_options INTERFACE -Wno-null-dereference
                                                             -Wno-maybe-uninitialized)
    endif()
endif()

# Tests are built once and run once: optimising them costs more than it saves.
add_library(tallowcrest_test_options INTERFACE)
target_compile_options(tallowcrest_test_options INTERFACE -O0)
