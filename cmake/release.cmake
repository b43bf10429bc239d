# The version is set in CMakeLists.txt. The top entry of packaging/changelog tells who released it,
# and when: TALLOWCREST_MAINTAINER and TALLOWCREST_RELEASE_TIME.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS packaging/changelog)
file(STRINGS ${PROJECT_SOURCE_DIR}/packaging/changelog changelog LIMIT_COUNT 20)
list(GET changelog 0 changelog_title)
if(NOT changelog_title MATCHES "^tallowcrest \\(${PROJECT_VERSION}\\) ")
    message(FATAL_ERROR "packaging/changelog begins with \"${changelog_title}\", but the version in "
                        "CMakeLists.txt is ${PROJECT_VERSION}")
endif()
list(FILTER changelog INCLUDE REGEX "^ -- ")
list(GET changelog 0 changelog_signature)
if(NOT changelog_signature MATCHES "^ -- (.+>)  (.+)$")
    message(FATAL_ERROR "packaging/changelog: \"${changelog_signature}\" is not of the form "
                        "\" -- NAME <ADDRESS>  TIME\"")
endif()
set(TALLOWCREST_MAINTAINER ${CMAKE_MATCH_1})
set(TALLOWCREST_RELEASE_TIME ${CMAKE_MATCH_2})
