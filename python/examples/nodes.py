"""A node of an image graph: batches of float pictures, 0 to 1, (count, height, width, 3)."""

import numpy

import lumora


def look_node(images, look="xpro2", strength=16, **settings):
    """A new batch of the same shape and type."""
    images = numpy.asarray(images)
    if images.ndim != 4 or images.shape[-1] != 3:
        raise ValueError(f"images have the shape {images.shape}; needed is (count, height, width, 3)")
    # Alpha is there for the library, which then works in place.
    batch = numpy.full(images.shape[:-1] + (4,), 255, numpy.uint8)
    numpy.rint(numpy.clip(images, 0, 1) * 255, out=batch[..., :3], casting="unsafe")
    for picture in batch:
        lumora.apply(picture, look, strength=strength, out=picture, **settings)
    return (batch[..., :3] / 255).astype(images.dtype)
