# Precompiled headers: the headers that nearly every file of a kind includes, parsed once. Only
# layers with widgets have one. For the others, reading one would take as long as parsing the few
# headers that they need, and without it the compiler shows that they include what they use.
#
#   qt        the standard library and the toolkit's common headers
#   test      the standard library, GoogleTest and GoogleMock
#   qt_test   qt, GoogleTest and GoogleMock

set(STANDARD_HEADERS
    <algorithm>
    <array>
    <chrono>
    <cmath>
    <cstddef>
    <cstdint>
    <filesystem>
    <functional>
    <map>
    <memory>
    <mutex>
    <optional>
    <set>
    <span>
    <string>
    <string_view>
    <utility>
    <variant>
    <vector>)
set(PRECOMPILED_qt
    ${STANDARD_HEADERS}
    <QAccessible>
    <QApplication>
    <QBoxLayout>
    <QEvent>
    <QFontMetrics>
    <QImage>
    <QLabel>
    <QLocale>
    <QObject>
    <QPainter>
    <QPushButton>
    <QScrollArea>
    <QScrollBar>
    <QString>
    <QStringList>
    <QTimer>
    <QWidget>)
set(PRECOMPILED_test ${STANDARD_HEADERS} <gmock/gmock.h> <gtest/gtest.h>)
set(PRECOMPILED_qt_test ${PRECOMPILED_qt} <gmock/gmock.h> <gtest/gtest.h>)

# tallowcrest_precompile(TARGET KIND): uses the headers of that kind. They are compiled once for all
# targets that use them, which therefore need the same compiler options.
function(tallowcrest_precompile target kind)
    set(holder tallowcrest_precompiled_${kind})
    if(NOT TARGET ${holder})
        file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp CONTENT "")
        add_library(${holder} OBJECT ${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp)
        target_link_libraries(${holder} PRIVATE tallowcrest_options)
        if(kind MATCHES "qt")
            target_link_libraries(${holder} PRIVATE Qt6::Widgets)
        endif()
        if(kind STREQUAL "qt")
            target_link_libraries(${holder} PRIVATE tallowcrest_window_options)
        endif()
        if(kind MATCHES "test")
            target_link_libraries(${holder} PRIVATE GTest::gmock tallowcrest_test_options)
        endif()
        target_precompile_headers(${holder} PRIVATE ${PRECOMPILED_${kind}})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${holder})
endfunction()
