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

}  // namespace tavimodel
