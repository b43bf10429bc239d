// A module of before modules had a version. Its functions must not be called.

#include <cstdlib>

extern "C" {

[[gnu::visibility("default")]] void* tallowcrest_make_http_exchange() {
    std::abort();
}

[[gnu::visibility("default")]] void* tallowcrest_make_update_transport() {
    std::abort();
}

}  // extern "C"
