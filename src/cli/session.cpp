#include "cli/session.h"

#include <cassert>
#include <utility>

namespace tavi {
namespace {

Session* installed = nullptr;

}  // namespace

Session& Session::current() {
  assert(installed != nullptr);
  return *installed;
}

Session::Scope::Scope(Session& session) : previous_(std::exchange(installed, &session)) {}
Session::Scope::~Scope() {
  installed = previous_;
}

NoteStore& openStore(const StoreOptions& options) {
  Session& session = Session::current();
  session.store = session.makeStore(options);
  return *session.store;
}

}  // namespace tavi
