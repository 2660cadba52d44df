#include "domain/tag_parser.h"

#include "platform/markdown/hashtag.h"

namespace tavi {

using zephyrdown::ZDKHashtag;

std::string TagParser::canonicalName(std::string_view text) {
  return ZDKHashtag::sanitizeTagName(text).value_or("");
}

std::optional<std::string> TagParser::writtenForm(std::string_view name) {
  return ZDKHashtag::hashtagStringForTagName(name);
}

}  // namespace tavi
