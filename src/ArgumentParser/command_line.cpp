#include "ArgumentParser/command_line.h"

#include <cstdio>
#include <cstdlib>

#include "ArgumentParser/command_parser.h"
#include "ArgumentParser/help_generator.h"
#include "ArgumentParser/message_info.h"
#include "ArgumentParser/screen_width.h"

namespace ArgumentParser {

std::unique_ptr<ParsableCommand> parseAsRoot(const CommandType& root,
                                             const std::vector<std::string>& arguments) {
  return CommandParser(root, arguments).parse();
}

std::string message(const CommandType& root, const std::exception_ptr& error,
                    std::optional<int> columns) {
  return messageInfo(root, error, columns).message();
}

std::string fullMessage(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns) {
  return messageInfo(root, error, columns).fullText();
}

int exitCode(const CommandType& root, const std::exception_ptr& error) {
  return messageInfo(root, error, {}).exitCode();
}

void exitWithError(const CommandType& root, const std::exception_ptr& error) {
  const MessageInfo info = messageInfo(root, error, {});
  if (std::string text = info.fullText(); !text.empty()) {
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), info.isHelp() ? stdout : stderr);
  }
  std::exit(info.exitCode());
}

std::string helpMessage(const CommandStack& stack, std::optional<int> columns) {
  return HelpGenerator(stack).rendered(columns ? *columns : screenWidth());
}

}  // namespace ArgumentParser
