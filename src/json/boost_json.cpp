// Boost.JSON as part of this room: its sources are compiled here, and nowhere else.
#include <boost/json/src.hpp>
