#pragma once

namespace tallowcrest {

/// Prepares libcurl on the first call, so that it and OpenSSL overwrite all memory that they
/// release: they keep copies of the header with the key, and of a reply that repeats it. Nothing
/// else in the process may have prepared or used them before. False when the library cannot be
/// used. The first call reads variables of the environment, so it is made with `environmentLock` of
/// the program, or while there is only one thread. If `secretsFileVariable` is set by then, the
/// libraries write down the secrets of connections. Any thread.
bool prepareCurl();

}  // namespace tallowcrest
