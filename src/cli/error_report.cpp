#include "cli/error_report.h"

#include <algorithm>
#include <new>
#include <optional>

#include "ArgumentParser/command_line.h"
#include "ArgumentParser/parser_error.h"
#include "cli/cli_error.h"
#include "cli/session.h"
#include "domain/failure.h"
#include "domain/store_errors.h"
#include "json/json_writer.h"
#include "operations/operation.h"

namespace tavi {
namespace {

constexpr int businessError = 1;
constexpr int usageError = 64;

/// {"error":{"code":"...","message":"..."}}
void writeError(std::string_view code, std::string_view message) {
  ByteSink& output = Session::current().output;
  JSONWriter json(output, JSONStyle::commandLine);
  json.beginObject();
  json.key("error");
  json.beginObject();
  json.key("code");
  json.string(code);
  json.key("message");
  json.string(message);
  json.endObject();
  json.endObject();
  output.put('\n');
}

void writeLine(ByteSink& sink, std::string_view text) {
  sink.append(text);
  sink.put('\n');
}

/// Whether the parser refused an argument such as "-x?", which may be a query.
bool isGroupWithSign(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const ArgumentParser::CommandError& failure) {
    const auto* sign = std::get_if<ArgumentParser::NonAlphanumericShortOption>(&failure.error());
    return sign && sign->isInGroup;
  } catch (...) {
    return false;
  }
}

/// A hint for two plausible ways of searching that the parser refuses: --title, and a query that
/// begins with a dash.
std::optional<std::string_view> searchHint(const Arguments& arguments) {
  if (arguments.empty()) return {};
  const bool search = arguments[0] == "search";
  if (!search && arguments[0] != "search-in") return {};

  if (search && std::ranges::count(arguments, "--title") > 0) {
    return "Search has no --title flag — use @title in the query: tavicli search \"@title "
           "<text>\"";
  }
  const bool dashed = std::any_of(arguments.begin() + 1, arguments.end(), [](const auto& argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
  });
  if (!dashed) return {};
  return search ? "Query starts with \"-\" — use --query to pass it"
                : "Query starts with \"-\" — use --string to pass it";
}

}  // namespace

bool wantsJSONOutput(const Arguments& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--format=json") return true;
    if (arguments[i] == "--format" && i + 1 < arguments.size() && arguments[i + 1] == "json")
      return true;
  }
  return false;
}

int ErrorReporter::report(std::string_view code, std::string_view message, int exitCode) const {
  if (jsonErrorMode_) {
    writeError(code, message);
  } else {
    writeLine(Session::current().errors, "Error: " + std::string(message));
  }
  return exitCode;
}

int ErrorReporter::reportUsage(std::string_view message) const {
  return report("usage", message, usageError);
}

int ErrorReporter::reportAsParser(const std::exception_ptr& error) const {
  const int exitCode = ArgumentParser::exitCode(root_, error);
  const std::string text = ArgumentParser::fullMessage(root_, error);
  Session& session = Session::current();
  if (!text.empty()) writeLine(exitCode == 0 ? session.output : session.errors, text);
  return exitCode;
}

int ErrorReporter::reportParseError(const std::exception_ptr& error) const {
  const std::string text = ArgumentParser::message(root_, error);
  if (text.find("Unknown option") != std::string::npos || isGroupWithSign(error))
    if (const auto hint = searchHint(arguments_)) return reportUsage(*hint);
  if (!jsonErrorMode_) return reportAsParser(error);
  constexpr std::string_view prefix = "Error: ";
  return reportUsage(std::string_view(text).substr(text.starts_with(prefix) ? prefix.size() : 0));
}

int ErrorReporter::reportCommandError(const std::exception_ptr& error) const {
  try {
    std::rethrow_exception(error);
  } catch (const NoteStoreError& failure) {
    return report(failure.code(), failureMessage(failure), businessError);
  } catch (const CommandFailure& failure) {
    return report(failure.code(), failureMessage(failure), businessError);
  } catch (const TaviCLIError& failure) {
    return reportUsage(failureMessage(failure));
  } catch (const OperationError& failure) {
    return reportUsage(failureMessage(failure));
  } catch (const std::bad_alloc& failure) {
    return report("internal", failureMessage(failure), businessError);
  } catch (...) {
    if (!jsonErrorMode_) return reportAsParser(error);
    return report("internal", ArgumentParser::message(root_, error), businessError);
  }
}

}  // namespace tavi
