#pragma once

// Declarations that macOS adds to headers that other systems have too.

#include <pthread.h>
#include <sys/stat.h>
#include <sys/types.h>

constexpr short POSIX_SPAWN_CLOEXEC_DEFAULT = 0x4000;
#define st_atimespec st_atim
#define st_mtimespec st_mtim
#define st_flags __glibc_reserved[0]
constexpr unsigned UF_HIDDEN = 0x8000;
constexpr unsigned RENAME_EXCL = 4;
constexpr int F_NOCACHE = 48;
constexpr int SO_NOSIGPIPE = 0x1022;
constexpr int SOL_LOCAL = 0;
constexpr int LOCAL_PEERPID = 2;

enum qos_class_t { QOS_CLASS_UTILITY = 0x11 };

extern "C" {
int pthread_set_qos_class_self_np(qos_class_t level, int relativePriority);
int renameatx_np(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);
int getpeereid(int socket, uid_t* user, gid_t* group);
}
