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

/// The environment of one run of the command line. It is global, since the parser creates the
/// commands and cannot pass it to them. Only TaviCLI::main installs one; tests supply their own.
struct Session {
  ByteSink& output;
  ByteSink& errors;
  std::function<std::unique_ptr<NoteStore>(const StoreOptions&)> makeStore;
  std::function<std::optional<std::string>()> readStdinData;
  std::function<bool()> outputIsTerminal;
  OpenNoteOp::URLOpener openURL;
  std::unique_ptr<NoteStore> store = nullptr;  ///< of the running command; see `openStore`

  /// The installed session; there must be one.
  static Session& current();

  /// Installs a session for the lifetime of the scope.
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

/// Opens the store of the running command. The session owns it and closes it after the output is
/// flushed, since closing may take time.
NoteStore& openStore(const StoreOptions& options = {});

}  // namespace tavi
