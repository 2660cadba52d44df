// In a statically linked program, GCC's start-up code registers the unwind tables of exceptions,
// and the first exception sorts them, which takes three milliseconds. The linker can sort them
// instead (--eh-frame-hdr), but libgcc uses its table only if none are registered. These functions
// replace the two registration functions of libgcc (--wrap).
extern "C" {
void __wrap___register_frame_info(const void* /*begin*/, void* /*object*/) {}
void* __wrap___deregister_frame_info(const void* /*begin*/) {
  return nullptr;
}
}
