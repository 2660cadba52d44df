// A statically linked program must not load libraries, which would need the same C library at run
// time. SQLite and ICU refer to dlopen, but nothing calls it. This function replaces it (--wrap)
// and fails, so that the linker need not warn of it: --no-warnings would also silence undefined
// symbols.
extern "C" void* __wrap_dlopen(const char* /*path*/, int /*mode*/) {
  return nullptr;
}
