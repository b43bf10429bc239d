include(cmake/precompiled.cmake)

# tallowcrest_layer(NAME SOURCES... [DEPENDS layer...] [LIBRARIES target...])
#
# One folder of src/ as one static library, linked to exactly the layers that it may include.
function(tallowcrest_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
    set(target tallowcrest_${name})
    add_library(${target} STATIC ${LAYER_SOURCES})
    set_property(GLOBAL APPEND PROPERTY TALLOWCREST_LAYERS ${target})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    list(TRANSFORM LAYER_DEPENDS PREPEND tallowcrest_)
    target_link_libraries(
        ${target}
        PUBLIC ${LAYER_DEPENDS} ${LAYER_LIBRARIES}
        PRIVATE tallowcrest_options)
    if("${LAYER_LIBRARIES}" MATCHES "Qt6")
        target_link_libraries(${target} PRIVATE tallowcrest_window_options)
    endif()
    if("${LAYER_LIBRARIES}" MATCHES "Qt6::Widgets")
        tallowcrest_precompile(${target} qt)
    endif()
endfunction()

# tallowcrest_test(NAME [QT] LABEL unit|desktop|e2e SOURCES... [LIBRARIES target...]
#                  [PROPERTIES ...])
#
# One GoogleTest program; each of its cases becomes one ctest test. With QT it has an application
# object and, unless the environment chooses another one, the offscreen platform.
#
# unit     needs neither a desktop nor the built programs; `make check` runs these
# desktop  needs Qt, a private display or a private session bus
# e2e      runs the built programs
function(tallowcrest_test name)
    cmake_parse_arguments(TEST "QT" "LABEL" "SOURCES;LIBRARIES;PROPERTIES" ${ARGN})
    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} tallowcrest_options
                                          tallowcrest_test_options tallowcrest_test_support
                                          GTest::gmock)
    target_compile_definitions(
        ${name} PRIVATE TALLOWCREST_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                        TALLOWCREST_BINARY_DIR="${PROJECT_BINARY_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    if(TEST_QT)
        target_link_libraries(${name} PRIVATE tallowcrest_qt_test)
        tallowcrest_precompile(${name} qt_test)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
        tallowcrest_precompile(${name} test)
    endif()
    # Most of the time of compiling a test goes into headers and into instances of the same
    # templates: several files are compiled as one.
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 5)
    if(TEST_LABEL STREQUAL "unit")
        add_dependencies(unit_tests ${name})
    endif()
    gtest_discover_tests(
        ${name}
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 120 LABELS ${TEST_LABEL} ${TEST_PROPERTIES})
endfunction()

# tallowcrest_fuzz(NAME SOURCES... [LIBRARIES target...])
#
# One libFuzzer program. `make fuzz` runs every program in the folder fuzz/ of the build. Recorded
# inputs in fuzz/corpus/NAME/ are its seeds.
function(tallowcrest_fuzz name)
    cmake_parse_arguments(FUZZ "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${FUZZ_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${FUZZ_LIBRARIES} tallowcrest_options)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
endfunction()

# tallowcrest_bench(NAME SOURCES... [LIBRARIES target...])
#
# One Google Benchmark program. `make bench` runs every program in the folder bench/ of the build.
function(tallowcrest_bench name)
    cmake_parse_arguments(BENCH "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${BENCH_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${BENCH_LIBRARIES} tallowcrest_options
                                          benchmark::benchmark_main)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
