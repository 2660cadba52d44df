#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// A program in a pseudo-terminal, which the test types into and reads from.
class Terminal {
 public:
  using Environment = std::map<std::string, std::string>;

  Terminal(const std::vector<std::string>& command, const std::string& folder,
           const Environment& environment);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void type(std::string_view keys);

  /// The output from now on, up to and including `mark`; throws if it does not appear in time.
  std::string readUntil(std::string_view mark);

 private:
  int terminal_ = -1;
  int process_ = -1;
  std::string unread_;
};

}  // namespace support
