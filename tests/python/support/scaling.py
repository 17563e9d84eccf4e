"""Restates the scaling rule, samples to 0..255, without sharing code with the library."""

import numpy as np


def to_8_bit(samples):
    """Single precision up to the product, double precision from the sum on. The sum is truncated, then clamped."""
    if samples.dtype == np.uint8:
        return samples
    low, high = sample_range(samples.dtype)
    single = np.float32
    with np.errstate(over="ignore", invalid="ignore"):
        share = (samples.astype(single) - single(low)) / (single(high) - single(low)) * single(255)
    wide = share.astype(np.float64) + 0.5
    inside = (wide > -2147483649.0) & (wide < 2147483648.0)  # false for NaN
    whole = np.trunc(np.where(inside, wide, -1.0))
    return np.clip(whole, 0, 255).astype(np.uint8)


def sample_range(dtype):
    """The smallest and the largest sample of the range."""
    if dtype.kind in "fb":
        return 0, 1
    return np.iinfo(dtype).min, np.iinfo(dtype).max
