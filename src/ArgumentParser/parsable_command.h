#pragma once

#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include "ArgumentParser/argument_set.h"
#include "ArgumentParser/errors.h"
#include "ArgumentParser/name.h"

/// Commands declare their arguments; the library turns a command line into a command with values, a
/// help page or an error. A declaration reads like the help page:
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

/// A group of arguments that several commands can share.
class ParsableArguments {
 public:
  virtual ~ParsableArguments() = default;

  /// Declares the arguments and binds them to members of this object.
  virtual void declare(ArgumentSet&) {}

  /// Called after parsing. Throws a ValidationError if the values are invalid.
  virtual void validate() {}
};

/// Stands for a subclass of ParsableCommand at run time: gives its configuration and creates
/// commands of it. See commandType().
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

/// The name, texts and subcommands of a command.
struct CommandConfiguration {
  std::string commandName = {};           ///< empty: from the type, `AddMark` becomes "add-mark"
  std::string abstract = {};              ///< one line of help
  std::optional<std::string> usage = {};  ///< replaces the generated usage line
  std::string discussion = {};            ///< further help, shown below the abstract
  std::string version = {};               ///< if not empty, `--version` prints it
  bool shouldDisplay = true;              ///< false hides the command from its parent's help
  std::vector<CommandType> subcommands = {};
  std::optional<CommandType> defaultSubcommand = {};  ///< runs if the line names none
  std::optional<Names> helpNames = {};    ///< absent: the parent's; for the root, -h and --help
  std::vector<std::string> aliases = {};  ///< further names

  /// Whether `name` is the command's name or an alias.
  bool answersTo(std::string_view name) const;
  bool isDefault(const CommandType& subcommand) const { return defaultSubcommand == subcommand; }
};

/// The base class of commands.
class ParsableCommand : public ParsableArguments {
 public:
  static CommandConfiguration configuration() { return {}; }

  /// Runs the command. The default throws a request for the command's help page.
  virtual void run();
};

/// The CommandType of a default-constructible subclass.
template <class Command>
CommandType commandType() {
  return CommandType(
      &Command::configuration,
      []() -> std::unique_ptr<ParsableCommand> { return std::make_unique<Command>(); },
      typeid(Command));
}

}  // namespace ArgumentParser
