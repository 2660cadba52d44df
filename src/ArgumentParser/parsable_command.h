#pragma once

#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include "ArgumentParser/argument_set.h"
#include "ArgumentParser/errors.h"
#include "ArgumentParser/name.h"

/// Commands and their arguments declared as data, and a command line turned into a filled-in
/// command, a help page or an error. A command reads like its own help page:
///
///   class AddCommand : public ArgumentParser::ParsableCommand {
///    public:
///     static ArgumentParser::CommandConfiguration configuration() {
///       return {.commandName = "add", .abstract = "Add marks to a page."};
///     }
///     void declare(ArgumentParser::ArgumentSet& args) override {
///       args.argument(page, "page").help("The page.").required();
///       args.option(limit, {"-n", "--limit"}).help("How many marks at most.");
///       args.flag(quiet, "--quiet").help("Print nothing.");
///     }
///     void run() override;
///
///    private:
///     std::string page;
///     std::optional<std::int64_t> limit;
///     bool quiet = false;
///   };
namespace ArgumentParser {

struct CommandConfiguration;
class ParsableCommand;

/// Arguments that belong together. Several commands may hold the same group.
class ParsableArguments {
 public:
  virtual ~ParsableArguments() = default;

  virtual void declare(ArgumentSet&) {}

  /// A check after parsing. Throws a ValidationError with a message for the user.
  virtual void validate() {}
};

/// A kind of command: gives its configuration, and new commands with initial values.
class CommandType {
 public:
  using Configure = CommandConfiguration (*)();
  using Make = std::unique_ptr<ParsableCommand> (*)();
  constexpr CommandType(Configure configure, Make makeNew, const std::type_info& dynamicType)
      : configure_(configure), make_(makeNew), type_(&dynamicType) {}

  CommandConfiguration configuration() const;  ///< its name is never empty
  std::unique_ptr<ParsableCommand> make() const;
  const std::type_info& type() const { return *type_; }

  bool operator==(const CommandType& other) const { return *type_ == *other.type_; }

 private:
  Configure configure_;
  Make make_;
  const std::type_info* type_;
};

struct CommandConfiguration {
  std::string commandName = {};           ///< empty: from the type, `AddMark` becomes "add-mark"
  std::string abstract = {};              ///< one line
  std::optional<std::string> usage = {};  ///< in place of the usage line made from the arguments
  std::string discussion = {};            ///< stands under the abstract
  std::string version = {};               ///< if not empty, `--version` prints it
  bool shouldDisplay = true;              ///< false hides it from its parent's help
  std::vector<CommandType> subcommands = {};
  std::optional<CommandType> defaultSubcommand = {};  ///< taken when none is named
  std::optional<Names> helpNames = {};    ///< absent: the parent's; of the root, -h and --help
  std::vector<std::string> aliases = {};  ///< further names

  bool answersTo(std::string_view name) const;
  bool isDefault(const CommandType& subcommand) const { return defaultSubcommand == subcommand; }
};

class ParsableCommand : public ParsableArguments {
 public:
  static CommandConfiguration configuration() { return {}; }

  /// Shows the command's help page unless overridden.
  virtual void run();
};

template <class Command>
CommandType commandType() {
  return CommandType(
      &Command::configuration,
      []() -> std::unique_ptr<ParsableCommand> { return std::make_unique<Command>(); },
      typeid(Command));
}

}  // namespace ArgumentParser
