#include "ArgumentParser/message_info.h"

#include "ArgumentParser/characters.h"
#include "ArgumentParser/completion_script.h"
#include "ArgumentParser/error_messages.h"
#include "ArgumentParser/help_generator.h"
#include "ArgumentParser/tool_info.h"

namespace ArgumentParser {

namespace {

using Help = MessageInfo::Help;
using Validation = MessageInfo::Validation;
using Other = MessageInfo::Other;

/// The usage line and a pointer to the help page.
std::string usagePart(const CommandStack& stack) {
  std::string usage = HelpGenerator(stack).usageMessage();
  const std::string helpName = primaryHelpName(stack);
  if (helpName.empty()) return usage;
  if (!usage.empty()) usage += '\n';
  return usage + "  See '" + commandPath(stack) + " " + helpName + "' for more information.";
}

/// Converts an error into what is printed. `stack` ends with the command in which it occurred.
class Converter {
 public:
  Converter(CommandStack stack, std::optional<int> columns)
      : stack_(std::move(stack)), columns_(columns) {}

  MessageInfo operator()(const HelpRequested&) const { return {Help{page(stack_)}}; }
  MessageInfo operator()(const VersionRequested&) const {
    const std::string text = version(stack_);
    return {Help{text.empty() ? "Unspecified version" : text}};
  }
  MessageInfo operator()(const DumpHelpRequested&) const { return {Help{dumpHelp(stack_)}}; }
  MessageInfo operator()(const CompletionScriptRequested& request) const {
    return {Help{completionScript(stack_.front(), request.shell)}};
  }
  MessageInfo operator()(const CompletionScriptCustomResponse& response) const {
    return {Help{response.text}};
  }
  MessageInfo operator()(const UserValidationError& error) const {
    return fromAnyError(error.error);
  }
  MessageInfo operator()(const NoArguments& error) const {
    ErrorText text = errorText(error, stack_);
    return {Validation{text.message, "\n" + page({stack_.front()}), text.help}};
  }
  template <class Case>
  MessageInfo operator()(const Case& error) const {
    ErrorText text = errorText(error, stack_);
    return {Validation{text.message, usagePart(stack_), text.help}};
  }

  MessageInfo fromAnyError(const std::exception_ptr& error) const {
    try {
      std::rethrow_exception(error);
    } catch (const ValidationError& invalid) {
      return {Validation{invalid.message(), usagePart(stack_), {}}};
    } catch (const CleanExit& exit) {
      return {Help{answer(exit)}};
    } catch (const ExitCode& exit) {
      return {Other{{}, exit.code()}};
    } catch (const std::exception& other) {
      return {Other{withoutControls(other.what()), ExitCode::failure}};
    } catch (...) {
      return {Other{"Unknown error", ExitCode::failure}};
    }
  }

 private:
  std::string page(const CommandStack& stack) const { return helpMessage(stack, columns_); }

  std::string answer(const CleanExit& exit) const {
    if (const auto* text = std::get_if<std::string>(&exit.request())) return *text;
    return page(stackTo(stack_.front(), std::get<std::type_index>(exit.request())));
  }

  CommandStack stack_;
  std::optional<int> columns_;
};

}  // namespace

MessageInfo messageInfo(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns) {
  try {
    std::rethrow_exception(error);
  } catch (const CommandError& failure) {
    return std::visit(Converter(failure.stack(), columns), failure.error());
  } catch (...) {
    return Converter({root}, columns).fromAnyError(error);
  }
}

std::string MessageInfo::message() const {
  if (const auto* help = std::get_if<Help>(&content)) return help->text;
  if (const auto* validation = std::get_if<Validation>(&content)) return validation->message;
  return std::get<Other>(content).message;
}

std::string MessageInfo::fullText() const {
  const std::string text = message();
  if (isHelp()) return text;
  const std::string error = text.empty() ? text : "Error: " + text;
  const auto* validation = std::get_if<Validation>(&content);
  if (!validation) return error;
  std::string result = error.empty() ? error : error + "\n";
  if (!validation->help.empty()) result += "Help:  " + validation->help + "\n";
  return result + validation->usage;
}

int MessageInfo::exitCode() const {
  if (isHelp()) return ExitCode::success;
  if (const auto* other = std::get_if<Other>(&content)) return other->exitCode;
  return ExitCode::validationFailure;
}

}  // namespace ArgumentParser
