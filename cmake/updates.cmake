# What a build knows about its updates. Without a feed, a check for updates says that it failed.

set(TALLOWCREST_BUILD_NUMBER "1" CACHE STRING "The number by which updates are compared")
set(TALLOWCREST_UPDATE_FEED_URL "" CACHE STRING "Where updates are announced: an https address")
set(TALLOWCREST_UPDATE_HOST "" CACHE STRING "The only host that updates are downloaded from")
set(TALLOWCREST_UPDATE_PUBLIC_KEY ""
    CACHE STRING "Announcements must be signed with this key: Ed25519, 32 bytes in Base64")

if(NOT TALLOWCREST_BUILD_NUMBER MATCHES "^[0-9]+$")
    message(FATAL_ERROR "TALLOWCREST_BUILD_NUMBER is not a number")
endif()
if(TALLOWCREST_UPDATE_FEED_URL AND NOT TALLOWCREST_UPDATE_FEED_URL MATCHES "^https://[^\"\\]+$")
    message(FATAL_ERROR "TALLOWCREST_UPDATE_FEED_URL is not an https address")
endif()
if(TALLOWCREST_UPDATE_FEED_URL AND NOT TALLOWCREST_UPDATE_HOST MATCHES "^[A-Za-z0-9._-]+$")
    message(FATAL_ERROR "TALLOWCREST_UPDATE_HOST is not the name of a host")
endif()
string(LENGTH "${TALLOWCREST_UPDATE_PUBLIC_KEY}" length)
if(length AND NOT (length EQUAL 44 AND TALLOWCREST_UPDATE_PUBLIC_KEY MATCHES "^[A-Za-z0-9+/]+=$"))
    message(FATAL_ERROR "TALLOWCREST_UPDATE_PUBLIC_KEY is not 32 bytes in Base64")
endif()

# tallowcrest_module_version(SOURCE): gives one source file the text by which a program knows the
# modules that were built with it.
function(tallowcrest_module_version source)
    set_property(
        SOURCE ${source}
        APPEND
        PROPERTY COMPILE_DEFINITIONS
                 "TALLOWCREST_MODULE_VERSION=\"${PROJECT_VERSION} (${TALLOWCREST_BUILD_NUMBER})\"")
endfunction()

# tallowcrest_update_values(SOURCE): gives the values to one source file, as texts.
function(tallowcrest_update_values source)
    foreach(name IN ITEMS BUILD_NUMBER UPDATE_FEED_URL UPDATE_HOST UPDATE_PUBLIC_KEY)
        set_property(
            SOURCE ${source}
            APPEND
            PROPERTY COMPILE_DEFINITIONS "TALLOWCREST_${name}=\"${TALLOWCREST_${name}}\"")
    endforeach()
endfunction()
