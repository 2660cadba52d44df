// For a program that is linked statically, GCC's start-up code registers the tables by which
// exceptions unwind, and the first exception sorts them all, which takes three milliseconds. The
// linker can sort them (--eh-frame-hdr), and they are used so when none are registered: these stand
// in for the two functions of libgcc (--wrap).
extern "C" {
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
void __wrap___register_frame_info(const void* /*begin*/, void* /*object*/) {}
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void* __wrap___deregister_frame_info(const void* /*begin*/) {
  return nullptr;
}
}
