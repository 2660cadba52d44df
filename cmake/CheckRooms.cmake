# cmake -DROOMS=<file> -DPAGE=<file> -P CheckRooms.cmake: fails unless the page holds the table of
# rooms, line for line, as the USES lines make it.
file(READ "${ROOMS}" rooms)
file(READ "${PAGE}" page)
string(FIND "${page}" "\n${rooms}\n" place)
if(place EQUAL -1)
  message(FATAL_ERROR "The table of rooms in ${PAGE} should read:\n${rooms}")
endif()
