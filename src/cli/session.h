#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "bytes/byte_sink.h"
#include "domain/note_store.h"
#include "operations/location_operations.h"
#include "store/make_store.h"

namespace tavi {

/// What a run of the command line has around it. Commands reach it from anywhere, since the parser
/// makes them; only TaviCLI::main puts one in place, and tests give it their own.
struct Session {
  ByteSink& output;
  ByteSink& errors;
  std::function<std::unique_ptr<NoteStore>(const StoreOptions&)> makeStore;
  std::function<std::optional<std::string>()> readStdinData;
  std::function<bool()> outputIsTerminal;
  OpenNoteOp::URLOpener openURL;
  std::unique_ptr<NoteStore> store = nullptr;  ///< the command's, from `openStore`

  static Session& current();

  /// Puts a session in place for as long as the scope lives.
  class Scope {
   public:
    explicit Scope(Session& session);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Session* previous_;
  };
};

/// Opens the store of the command that runs. It is released when the command's output is out: a
/// store may use the occasion to tidy up.
NoteStore& openStore(const StoreOptions& options = {});

}  // namespace tavi
