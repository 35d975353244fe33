// LAODIANYING as a whole: the film aged and tinted.
#pragma once

#include "looks/look.h"
#include "looks/texture/film_ageing.h"

namespace lumora {

// Ages the picture and runs the tint under its shade texture (`inputs`), on four stripes or on the
// calling thread. With a `copy`, room of the picture's size, the picture as it was is mixed in; it
// is kept in the beginning of each stripe of that room, the rest is not touched. Returns kOk or
// kThreadFailed (the stripes whose worker ran are done, the others untouched).
Status runAgedFilm(const Picture& picture, const LookInputs& inputs, const MarkBuffer& marks,
                   std::uint8_t* copy, Threads threads);

}  // namespace lumora
