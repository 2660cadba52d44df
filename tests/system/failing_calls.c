/* A preloaded library (LD_PRELOAD): among the calls that change files, call number FAIL_AT fails
   with the error FAIL_WITH, and the file FAIL_MARK is created. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#define FORWARD(name, type) ((type)dlsym(RTLD_NEXT, #name))
typedef int (*OpenCall)(const char*, int, ...);

static int fails(void) {
  static int calls = 0;
  const char* at = getenv("FAIL_AT");
  if (at == NULL || ++calls != atoi(at)) return 0;
  close(FORWARD(open, OpenCall)(getenv("FAIL_MARK"), O_WRONLY | O_CREAT, 0600));
  errno = atoi(getenv("FAIL_WITH"));
  return 1;
}

static int concernsFile(int fd) {
  return fd > 2;
}

ssize_t pwrite64(int fd, const void* bytes, size_t count, off64_t at) {
  if (fails()) return -1;
  return FORWARD(pwrite64, ssize_t(*)(int, const void*, size_t, off64_t))(fd, bytes, count, at);
}

ssize_t pwrite(int fd, const void* bytes, size_t count, off_t at) {
  if (fails()) return -1;
  return FORWARD(pwrite, ssize_t(*)(int, const void*, size_t, off_t))(fd, bytes, count, at);
}

ssize_t write(int fd, const void* bytes, size_t count) {
  if (concernsFile(fd) && fails()) return -1;
  return FORWARD(write, ssize_t(*)(int, const void*, size_t))(fd, bytes, count);
}

ssize_t copy_file_range(int in, off64_t* from, int out, off64_t* to, size_t size, unsigned flags) {
  if (fails()) return -1;
  return FORWARD(copy_file_range, ssize_t(*)(int, off64_t*, int, off64_t*, size_t, unsigned))(
      in, from, out, to, size, flags);
}

int fsync(int fd) {
  if (fails()) return -1;
  return FORWARD(fsync, int (*)(int))(fd);
}

int fdatasync(int fd) {
  if (fails()) return -1;
  return FORWARD(fdatasync, int (*)(int))(fd);
}

int ftruncate64(int fd, off64_t length) {
  if (fails()) return -1;
  return FORWARD(ftruncate64, int (*)(int, off64_t))(fd, length);
}

int rename(const char* from, const char* to) {
  if (fails()) return -1;
  return FORWARD(rename, int (*)(const char*, const char*))(from, to);
}

int unlink(const char* path) {
  if (fails()) return -1;
  return FORWARD(unlink, int (*)(const char*))(path);
}

int mkdir(const char* path, mode_t mode) {
  if (fails()) return -1;
  return FORWARD(mkdir, int (*)(const char*, mode_t))(path, mode);
}

int flock(int fd, int operation) {
  if (fails()) return -1;
  return FORWARD(flock, int (*)(int, int))(fd, operation);
}

#define OPEN(name)                                     \
  int name(const char* path, int flags, ...) {         \
    va_list rest;                                      \
    va_start(rest, flags);                             \
    const int mode = va_arg(rest, int);                \
    va_end(rest);                                      \
    if ((flags & O_CREAT) != 0 && fails()) return -1;  \
    return FORWARD(name, OpenCall)(path, flags, mode); \
  }
OPEN(open)
OPEN(open64)
