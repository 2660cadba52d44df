/* A preloaded library (LD_PRELOAD): records the program's calls on files below RECORD_UNDER in the
   file RECORD_TO, one record per call:

     OPERATION OFFSET SIZE PATH-LENGTH PATH "\n" SIZE bytes

   C: create; W: write the bytes at the offset; T: truncate to the offset; S: sync a file or folder;
   R: rename to the name in the bytes; U: unlink; A: write to standard output. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/sendfile.h>
#include <sys/types.h>
#include <unistd.h>

#define FORWARD(name, type) ((type)dlsym(RTLD_NEXT, #name))
typedef int (*OpenCall)(const char*, int, ...);
typedef ssize_t (*WriteCall)(int, const void*, size_t);

static void record(char operation, const char* path, off_t offset, const void* bytes, size_t size) {
  static int target = -1;
  const char* under = getenv("RECORD_UNDER");
  if (under == NULL || (operation != 'A' && strncmp(path, under, strlen(under)) != 0)) return;
  if (target < 0)
    target = FORWARD(open, OpenCall)(getenv("RECORD_TO"), O_WRONLY | O_APPEND | O_CLOEXEC);
  char head[4200];
  const int length = snprintf(head, sizeof head, "%c %lld %zu %zu %s\n", operation,
                              (long long)offset, size, strlen(path), path);
  const WriteCall put = FORWARD(write, WriteCall);
  if (put(target, head, (size_t)length) < 0 || (size > 0 && put(target, bytes, size) < 0)) abort();
}

static void recordOf(char operation, int fd, off_t offset, const void* bytes, size_t size) {
  char link[64], path[4096];
  snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  const ssize_t length = readlink(link, path, sizeof path - 1);
  if (length < 0) return;
  path[length] = '\0';
  record(operation, path, offset, bytes, size);
}

/* Records the bytes that the kernel copied to the end of the file. */
static void recordCopied(int fd, ssize_t count) {
  char link[64];
  snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  const off_t begin = lseek(fd, 0, SEEK_CUR) - count;
  const int copy = FORWARD(open, OpenCall)(link, O_RDONLY);
  char* bytes = malloc((size_t)count);
  if (pread(copy, bytes, (size_t)count, begin) == count)
    recordOf('W', fd, begin, bytes, (size_t)count);
  free(bytes);
  close(copy);
}

#define PWRITE(name)                                                                     \
  ssize_t name(int fd, const void* bytes, size_t size, off_t at) {                       \
    const ssize_t count =                                                                \
        FORWARD(name, ssize_t(*)(int, const void*, size_t, off_t))(fd, bytes, size, at); \
    if (count > 0) recordOf('W', fd, at, bytes, (size_t)count);                          \
    return count;                                                                        \
  }
PWRITE(pwrite)
PWRITE(pwrite64)

ssize_t write(int fd, const void* bytes, size_t size) {
  const ssize_t count = FORWARD(write, WriteCall)(fd, bytes, size);
  if (fd == 1) record('A', "", 0, NULL, 0);
  if (fd > 2 && count > 0) recordOf('W', fd, lseek(fd, 0, SEEK_CUR) - count, bytes, (size_t)count);
  return count;
}

ssize_t copy_file_range(int in, off64_t* from, int out, off64_t* to, size_t size, unsigned flags) {
  const ssize_t count =
      FORWARD(copy_file_range, ssize_t(*)(int, off64_t*, int, off64_t*, size_t, unsigned))(
          in, from, out, to, size, flags);
  if (count > 0) recordCopied(out, count);
  return count;
}

#define TRUNCATE(name)                                                 \
  int name(int fd, off_t length) {                                     \
    const int result = FORWARD(name, int (*)(int, off_t))(fd, length); \
    if (result == 0) recordOf('T', fd, length, NULL, 0);               \
    return result;                                                     \
  }
TRUNCATE(ftruncate)
TRUNCATE(ftruncate64)

#define SYNC(name)                                      \
  int name(int fd) {                                    \
    const int result = FORWARD(name, int (*)(int))(fd); \
    if (result == 0) recordOf('S', fd, 0, NULL, 0);     \
    return result;                                      \
  }
SYNC(fsync)
SYNC(fdatasync)

int rename(const char* from, const char* to) {
  const int result = FORWARD(rename, int (*)(const char*, const char*))(from, to);
  if (result == 0) record('R', from, 0, to, strlen(to));
  return result;
}

#define REMOVE(name)                                              \
  int name(const char* path) {                                    \
    const int result = FORWARD(name, int (*)(const char*))(path); \
    if (result == 0) record('U', path, 0, NULL, 0);               \
    return result;                                                \
  }
REMOVE(unlink)
REMOVE(remove)

#define OPEN(name)                                                         \
  int name(const char* path, int flags, ...) {                             \
    va_list rest;                                                          \
    va_start(rest, flags);                                                 \
    const int mode = va_arg(rest, int);                                    \
    va_end(rest);                                                          \
    const int creates = (flags & O_CREAT) != 0 && access(path, F_OK) != 0; \
    const int fd = FORWARD(name, OpenCall)(path, flags, mode);             \
    if (creates && fd >= 0) record('C', path, 0, NULL, 0);                 \
    return fd;                                                             \
  }
OPEN(open)
OPEN(open64)
