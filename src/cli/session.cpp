#include "cli/session.h"

#include <cassert>
#include <utility>

namespace tavi {
namespace {

Session* inPlace = nullptr;

}  // namespace

Session& Session::current() {
  assert(inPlace != nullptr);
  return *inPlace;
}

Session::Scope::Scope(Session& session) : previous_(std::exchange(inPlace, &session)) {}
Session::Scope::~Scope() {
  inPlace = previous_;
}

NoteStore& openStore(const StoreOptions& options) {
  Session& session = Session::current();
  session.store = session.makeStore(options);
  return *session.store;
}

}  // namespace tavi
