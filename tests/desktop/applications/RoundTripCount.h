#pragma once

#include <xcb/xcb.h>

/// Counts how often this program has sent something to that server and then waited for it.
void countRoundTripsOf(xcb_connection_t* connection);
/// Since the last call.
[[nodiscard]] int takeRoundTripCount();
