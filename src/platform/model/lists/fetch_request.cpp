#include "platform/model/lists/fetch_request.h"

namespace tavimodel {

std::string_view placeTest(Place place) {
  switch (place) {
    case Place::anywhere:
      break;
    case Place::notes:
      return "trashed = 0 AND archived = 0 AND ifnull(permanentlyDeleted, 0) = 0";
    case Place::trash:
      return "trashed = 1 AND ifnull(permanentlyDeleted, 0) = 0";
    case Place::archive:
      return "archived = 1 AND ifnull(permanentlyDeleted, 0) = 0";
  }
  return "ifnull(permanentlyDeleted, 0) = 0";
}

std::string_view placeTestOfScan(Place place) {
  switch (place) {
    case Place::anywhere:
      break;
    case Place::notes:
      return "place = 0";
    case Place::trash:
      return "place IN (4, 6)";
    case Place::archive:
      return "place IN (2, 6)";
  }
  return "place IN (0, 2, 4, 6)";
}

}  // namespace tavimodel
