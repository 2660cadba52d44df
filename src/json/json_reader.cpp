#include "json/json_reader.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parser.hpp>
#include <string>

namespace tavi {

boost::json::value parseJSON(std::string_view text) {
  boost::json::parse_options options;
  options.max_depth = 128;
  boost::json::parser parser({}, options);
  // One block for the whole tree, released with the value.
  parser.reset(boost::json::make_shared_resource<boost::json::monotonic_resource>());

  boost::json::error_code error;
  const std::size_t read = parser.write_some(text.data(), text.size(), error);
  if (!error && read < text.size()) error = boost::json::error::extra_data;
  if (error) {
    throw JSONParseError("not valid JSON: " + error.message() + " at byte " + std::to_string(read));
  }
  return parser.release();
}

}  // namespace tavi
