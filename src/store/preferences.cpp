#include "store/preferences.h"

#include <string>
#include <variant>

#include "platform/system/directories.h"
#include "platform/system/preferences.h"

namespace tavi {

using platform::system::PropertyDictionary;
using platform::system::UserDefaults;

bool TaviPreferences::isApplicationLockEnabled() {
  return UserDefaults("X7Q2M5R8K1.net.kelvaro.tavi").boolForKey("applicationLockingEnabled");
}

bool TaviPreferences::tagsAtBottom() {
  const auto home = platform::system::homeDirectory();
  if (!home) return true;
  const auto preferences = platform::system::readPropertyList(
      *home /
      "Library/Containers/net.kelvaro.tavi/Data/Library/Preferences/net.kelvaro.tavi.plist");
  if (!preferences) return true;
  const auto position = preferences->find("KVTagPosition");
  if (position == preferences->end()) return true;
  const auto* value = std::get_if<std::string>(&position->second);
  return value == nullptr || *value != "KVTagPositionTop";
}

}  // namespace tavi
