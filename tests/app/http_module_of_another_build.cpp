// What an upgrade can put beside a running program. Its functions must not be called.

#include <cstdlib>

extern "C" {

[[gnu::visibility("default")]] const char* tallowcrest_module_version() {
    return "0.0.0 (0)";
}

[[gnu::visibility("default")]] void* tallowcrest_make_http_exchange() {
    std::abort();
}

[[gnu::visibility("default")]] void* tallowcrest_make_update_transport() {
    std::abort();
}

}  // extern "C"
