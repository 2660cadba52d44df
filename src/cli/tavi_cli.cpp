#include "cli/tavi_cli.h"

#include <unistd.h>

#include <exception>
#include <new>

#include "ArgumentParser/command_line.h"
#include "ArgumentParser/completion_request.h"
#include "cli/commands/append_command.h"
#include "cli/commands/attachments_command.h"
#include "cli/commands/cat_command.h"
#include "cli/commands/create_command.h"
#include "cli/commands/edit_command.h"
#include "cli/commands/list_command.h"
#include "cli/commands/mcp_server_command.h"
#include "cli/commands/move_commands.h"
#include "cli/commands/open_command.h"
#include "cli/commands/overwrite_command.h"
#include "cli/commands/pin_command.h"
#include "cli/commands/search_command.h"
#include "cli/commands/search_in_command.h"
#include "cli/commands/show_command.h"
#include "cli/commands/tags_command.h"
#include "cli/error_report.h"
#include "cli/help.h"
#include "cli/standard_input.h"
#include "cli/standard_streams.h"
#include "cli/version.h"
#include "domain/failure.h"
#include "platform/system/workspace.h"
#include "platform/text/utf8.h"
#include "store/make_store.h"

namespace tavi {
namespace {

using ArgumentParser::commandType;
using ArgumentParser::CommandType;

/// The version or the help page that the arguments ask for; absent if they ask for neither.
std::optional<std::string> requestedText(const CommandType& root, const Arguments& arguments) {
  if (arguments == Arguments{"-v"} || arguments == Arguments{"--version"})
    return versionString() + "\n";
  if (isShortHelpRequest(arguments)) return shortOverview(root);
  if (isFullReferenceRequest(arguments)) return fullReference(root);
  const auto path = helpTargetPath(arguments);
  const auto stack = path ? resolveCommandPath(root, *path) : std::nullopt;
  if (stack) return commandHelp(*stack);
  return std::nullopt;
}

/// The position, from 1, of the first argument that is not valid UTF-8.
std::optional<std::size_t> invalidArgument(const Arguments& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (!platform::text::isValidUTF8(arguments[i])) return i + 1;
  return std::nullopt;
}

std::optional<int> run(ArgumentParser::ParsableCommand& command, const ErrorReporter& reporter) {
  try {
    command.run();
    Session::current().output.flush();
    return std::nullopt;
  } catch (const OutputClosed&) {
    return std::nullopt;  // the command has done its work, and the reader has gone
  } catch (...) {
    return reporter.reportCommandError(std::current_exception());
  }
}

/// Prints the candidates for a shell. Prints nothing on any failure, since the user is typing.
int complete(const CommandType& root, const Arguments& arguments) try {
  ByteSink& output = Session::current().output;
  if (invalidArgument(arguments)) return 0;
  const std::string candidates = ArgumentParser::completionAnswer(root, arguments);
  if (!candidates.empty()) output.append(candidates + "\n");
  output.flush();
  return 0;
} catch (...) {
  return 0;
}

std::optional<int> serve(const CommandType& root, const Arguments& arguments) {
  if (ArgumentParser::isCompletionRequest(arguments)) return complete(root, arguments);
  if (const auto text = requestedText(root, arguments)) {
    Session::current().output.append(*text);
    return 0;
  }
  const ErrorReporter reporter(root, arguments);
  if (const auto position = invalidArgument(arguments)) {
    return reporter.reportUsage("Argument " + std::to_string(*position) + " is not valid UTF-8");
  }
  std::unique_ptr<ArgumentParser::ParsableCommand> command;
  try {
    command = ArgumentParser::parseAsRoot(root, arguments);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return reporter.reportParseError(std::current_exception());
  }
  return run(*command, reporter);
}

/// Flushes the output. Returns the exit code, which becomes 1 if output could not be written.
std::optional<int> flushed(Session& session, std::optional<int> exitCode) {
  try {
    session.output.flush();
  } catch (const OutputClosed&) {
  } catch (const std::system_error& error) {
    session.errors.append("Error: " + failureMessage(error) + "\n");
    exitCode = 1;
  }
  try {
    session.errors.flush();
  } catch (const std::system_error&) {  // nowhere left to report it
  }
  return exitCode;
}

}  // namespace

ArgumentParser::CommandConfiguration TaviCLI::configuration() {
  return {.commandName = "tavicli",
          .abstract = "Command line tool for reading and writing Tavi notes.",
          .subcommands = {commandType<CatCommand>(), commandType<ShowCommand>(),
                          commandType<ListCommand>(), commandType<SearchCommand>(),
                          commandType<SearchInCommand>(), commandType<EditCommand>(),
                          commandType<OverwriteCommand>(), commandType<CreateCommand>(),
                          commandType<AppendCommand>(), commandType<TagsCommand>(),
                          commandType<PinCommand>(), commandType<TrashCommand>(),
                          commandType<ArchiveCommand>(), commandType<RestoreCommand>(),
                          commandType<OpenCommand>(), commandType<AttachmentsCommand>(),
                          commandType<MCPServerCommand>()}};
}

void TaviCLI::declare(ArgumentParser::ArgumentSet& args) {
  args.flag(version_, {"-v", "--version"}).help("Show the version.");
}

std::optional<int> TaviCLI::main(const std::vector<std::string>& arguments) {
  prepareStreams();
  DescriptorSink output(STDOUT_FILENO);
  DescriptorSink errors(STDERR_FILENO);
  Session session{.output = output,
                  .errors = errors,
                  .makeStore = makeStore,
                  .readStdinData = readStdinData,
                  .outputIsTerminal = [] { return ::isatty(STDOUT_FILENO) == 1; },
                  .openURL = platform::system::openURL};
  return main(arguments, session);
}

std::optional<int> TaviCLI::main(const std::vector<std::string>& arguments, Session& session) {
  const Session::Scope scope(session);
  std::optional<int> exitCode = 0;
  try {
    exitCode = serve(commandType<TaviCLI>(), arguments);
  } catch (const OutputClosed&) {    // from a long help page
  } catch (const std::bad_alloc&) {  // from outside a command's run
    const ErrorReporter reporter(commandType<TaviCLI>(), arguments);
    exitCode = reporter.reportCommandError(std::current_exception());
  }
  exitCode = flushed(session, exitCode);
  session.store.reset();
  return exitCode;
}

}  // namespace tavi
