// LAODIANYING as a whole: the film aged and tinted.
#pragma once

#include "looks/look.h"
#include "looks/texture/film_ageing.h"

namespace lumora {

// Ages the picture and runs the tint under its shade texture (`inputs`), on four stripes or on the
// calling thread. With a `copy`, room of the picture's size, the calling thread mixes in the
// picture as it was, by way of the beginning of that room; four stripes leave the picture as it was
// there, whole, for another step to mix in. Returns kOk or kThreadFailed (the stripes whose worker
// ran are done, the others untouched).
Status runAgedFilm(const Picture& picture, const LookInputs& inputs, const MarkBuffer& marks,
                   std::uint8_t* copy, Threads threads);

}  // namespace lumora
