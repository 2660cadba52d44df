#include "domain/tag_parser.h"

#include "platform/markdown/hashtag.h"

namespace tavi {

using zephyrdown::ZDKHashtag;

std::string TagParser::canonicalName(std::string_view text) {
  return ZDKHashtag::sanitizeTagName(text).value_or("");
}

std::string TagParser::hashtag(std::string_view name) {
  return ZDKHashtag::hashtagStringForTagName(name).value_or("#" + std::string(name));
}

}  // namespace tavi
