#include "command_line.h"

#include "bytes/byte_sink.h"

namespace tavi::testing {

CommandLine::Result CommandLine::run(const std::vector<std::string>& arguments) {
  StringSink output, errors;
  opened.reset();
  Session session{.output = output,
                  .errors = errors,
                  .makeStore =
                      [this](const StoreOptions& options) {
                        auto store = makeStore(options);
                        opened = options;
                        return store;
                      },
                  .readStdinData = [this] { return input; },
                  .outputIsTerminal = [this] { return outputIsTerminal; },
                  .openURL =
                      [this](const std::string& url) {
                        openedURL = url;
                        return true;
                      }};
  const std::optional<int> exitCode = TaviCLI::main(arguments, session);
  return {exitCode.value_or(0), output.take(), errors.take()};
}

}  // namespace tavi::testing
