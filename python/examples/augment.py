"""Augmentation of a data set: a random look of random strength, the same for the same seed."""

import numpy

import lumora

# Looks without places of their own: labels, boxes and masks stay true. The marks of old film lie
# elsewhere every time, whatever the seed.
LOOKS = [look.name for look in lumora.looks.values()
         if look.kind in ("monochrome", "colour curves", "texture")]


def augment(array, seed, strongest=24):
    """A new array of bytes, (height, width, 3 or 4), with a look that depends on the seed alone."""
    random = numpy.random.default_rng(seed)
    look = LOOKS[random.integers(len(LOOKS))]
    strength = int(random.integers(strongest + 1))
    # Data loaders run several processes: none of them needs threads beside.
    return lumora.apply(array, look, strength=strength, single_thread=True)
