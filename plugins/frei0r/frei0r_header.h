// The interface of frei0r, whose header does not know C++.
#pragma once

extern "C" {
#include <frei0r.h>
}
