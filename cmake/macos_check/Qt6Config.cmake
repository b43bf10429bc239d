# Debian's headers of Qt, which its sources for macOS are compiled with. Nothing is linked to them,
# and nothing is made of a class's declarations or of the resources.
set(Qt6_FOUND TRUE)
foreach(module IN ITEMS Core Gui Widgets Svg DBus)
    add_library(Qt6::${module} INTERFACE IMPORTED GLOBAL)
    target_include_directories(
        Qt6::${module} INTERFACE ${TALLOWCREST_MACOS_CHECK}/libraries/qt6
                                 ${TALLOWCREST_MACOS_CHECK}/libraries/qt6/Qt${module})
endforeach()
target_link_libraries(Qt6::Gui INTERFACE Qt6::Core)
target_link_libraries(Qt6::Widgets INTERFACE Qt6::Gui)
target_link_libraries(Qt6::Svg INTERFACE Qt6::Gui)
target_link_libraries(Qt6::DBus INTERFACE Qt6::Core)
function(qt_add_resources)
endfunction()
